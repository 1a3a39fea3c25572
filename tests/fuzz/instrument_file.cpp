// SPDX-License-Identifier: GPL-3.0-or-later
// An instrument file beside sound waves: loaded, played, and reported on.
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "tests/fuzz/run/Instruments.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WaveBuilder.h"

#include <algorithm>

namespace zarno::fuzz {
namespace {

using namespace test;

void play(ZInstrument& instrument) {
    for (const int key : {0, 60, 61})
        instrument.postEvent(midi::noteOn, 0, key, 100, 0);
    instrument.postEvent(midi::controller, 0, 1, 127, 20);
    instrument.postEvent(midi::noteOff, 0, 60, 0, 40);
    float left[150], right[150];
    float* outputs[] = {left, right};
    for (const int frames : {64, 1, 150}) {
        instrument.renderBlock(outputs, 2, frames);
        for (const float* side : outputs)
            require(std::all_of(side, side + frames, [](float x) { return x >= -1 && x <= 1; }),
                    "a sound comes out");
    }
}

void run(std::string_view input) {
    static const ScratchFolder folder("instrument_file");
    static const bool waves = [] {
        folder.write("a.wav", rampWave(32));
        folder.write(
            "b.wav",
            WaveBuilder().format(2, 48000, 24).data(std::string(60, 'x')).sampler(64, 1, 2, 5).bytes());
        return true;
    }();
    static const ZInstrument keepsTheDiskThread;
    require(waves, "there are waves");
    ZInstrument instrument;
    instrument.seedRandom(1);
    const LoadResult result = loadInstrument(instrument, folder.write("x.zse", input));
    require(result.loaded || result.problem, "a load that fails says why");
    play(instrument);
}

const Registered registered({"instrument_file", 3000, run, instrumentSeeds, {"a.wav", "b.wav", "..\\"}});

} // namespace
} // namespace zarno::fuzz

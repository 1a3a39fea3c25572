// SPDX-License-Identifier: GPL-3.0-or-later
// What a small file can ask for at the most, and what fuzzing found. The rest of it is in tests/fuzz.
#include "data/Limits.h"
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/PeakMemory.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"

#include <gtest/gtest.h>

namespace zarno {
namespace {

using namespace test;

// Two thousand zones, as many different preloads of the longest chunk as one short sample allows.
TEST(HostileInstruments, AllThatASmallFileCanAskFor) {
    const TempFolder folder;
    folder.write("a.wav", rampWave(32));
    for (const bool embedded : {true, false}) {
        InstrumentBuilder file;
        file.storage = embedded;
        file.settings.streamingStored = 1;
        file.settings.streamBufferFramesStored = INT32_MAX;
        file.groups = {{"G", {}, {}, {}}};
        auto& zones = file.groups[0].zones;
        while (zones.size() < 2000) {
            const bool first = zones.empty();
            zones.push_back(
                zone("a.wav", embedded && first ? block(2, 44100, 1, 32, std::string(64, 'f')) : ""));
            ZoneRecord& record = zones.back().record;
            record.loopMode = 2, record.loopEnd = 30;
            record.startFrame = zones.size() % 30;
        }
        for (const int polyphony : {1, INT32_MAX}) {
            file.settings.polyphonyStored = polyphony;
            ZInstrument instrument;
            const LoadResult result = loadInstrument(instrument, folder.write("x.zse", file.bytes()));
            EXPECT_TRUE(result.loaded) << sentence(result.problem);
            instrument.postEvent(midi::noteOn, 0, 60, 100, 0);
            float left[64], right[64];
            float* outputs[] = {left, right};
            instrument.renderBlock(outputs, 2, 64);
        }
    }
    EXPECT_LT(peakMegabytes(), limits::inputMegabytes);
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
// A wave file: read whole and from the middle as floats and as integers, and made a zone of.
#include "data/load/ZoneBuilder.h"
#include "data/sound/ZWaveFile.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WaveBuilder.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace zarno::fuzz {
namespace {

using namespace test;

void readFrames(ZWaveFile& wave) {
    const auto channels = static_cast<std::size_t>(wave.channelCount());
    const std::uint64_t frames = wave.lengthInFrames();
    std::vector<float> floats(100 * channels);
    std::vector<std::int16_t> shorts(100 * channels);
    for (const std::uint64_t from : {std::uint64_t{0}, frames / 2, frames - 1, frames, UINT64_MAX}) {
        const std::uint64_t there = from < frames ? std::min<std::uint64_t>(100, frames - from) : 0;
        wave.seekFrame(from);
        require(wave.readFloat(floats.data(), 100) == there, "all frames that the header promises are there");
        wave.seekFrame(from);
        require(wave.readShort(shorts.data(), 100) == there, "also as integers");
    }
    require(wave.hasFloatSamples() ||
                std::all_of(floats.begin(), floats.end(), [](float x) { return std::isfinite(x); }),
            "integers are numbers");
}

void makeZone(const std::string& path, bool streaming) {
    InstrumentSettings settings;
    settings.streaming = streaming;
    settings.streamBufferFrames = 50;
    ZoneBuilder builder(settings);
    const auto zone = builder.fromWaveFile(path);
    if (!zone->valid) return;
    clampPoints(zone->record, zone->lengthInFrames);
    builder.recordChanged(*zone);
    require(zone->record.startFrame < zone->record.endFrame, "a zone plays something");
    require(zone->record.loopStart < zone->record.loopEnd, "its loop too");
    require(ZWaveFile::openCount() == 0, "no file stays open");
}

void run(std::string_view input) {
    static const ScratchFolder folder("wave_file");
    const std::string path = folder.write("a.wav", input);
    for (const WaveFormats formats : {WaveFormats::Player, WaveFormats::Tools}) {
        ZWaveFile wave(formats);
        if (wave.open(path)) readFrames(wave);
    }
    for (const bool streaming : {false, true})
        makeZone(path, streaming);
}

std::vector<std::string> seeds() {
    std::vector<std::string> all;
    const std::string frames = "RIFFdata frames of any kind, 48 bytes of them";
    for (const int bits : {8, 16, 24, 32})
        for (const int channels : {1, 2})
            all.push_back(
                WaveBuilder().format(channels, 44100, bits).data(frames).sampler(64, 1, 2, 5).bytes());
    all.push_back(WaveBuilder().format(1, 48000, 32, 4, 3).data(frames).bytes());
    all.push_back(WaveBuilder()
                      .chunk("LIST", "abc")
                      .format(2, 8000, 16, 100)
                      .chunk("inst", "1234567")
                      .data(frames)
                      .bytes());
    all.push_back(WaveBuilder().format(1, 44100, 16).data(frames, UINT32_MAX).bytes(UINT32_MAX));
    return all;
}

const Registered
    registered({"wave_file", 4000, run, seeds, {"RIFF", "WAVE", "fmt ", "data", "smpl", "inst", "cue "}});

} // namespace
} // namespace zarno::fuzz

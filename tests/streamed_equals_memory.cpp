// SPDX-License-Identifier: GPL-3.0-or-later
// The same notes from disk and from memory. Loops are left out: streaming unrolls them by rules of its own,
// which segments_equal_samples.cpp holds it to.
#include "tests/support/Chance.h"
#include "tests/support/StreamingInstrument.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zarno {
namespace {

constexpr std::int32_t chunk = 3000;

struct Playing {
    TestInstrument instrument;
    explicit Playing(int voices, bool sixteenBit, int channels, std::uint64_t start)
        : instrument(voices) {
        instrument.engine.settings().sixteenBit = sixteenBit;
        Chance chance(7);
        const auto sample = TestSample::made(60000, channels, sixteenBit, 44100.0,
                                             [&](std::uint64_t, int) { return chance.real(-0.5f, 0.5f); });
        ZoneRecord record = plainZone(sample);
        record.startFrame = start;
        ZGroup& group = instrument.addGroup();
        instrument.addZone(group, sample, record);
        instrument.engine.activateGroup(&group);
    }
};

using Song = std::function<Stereo(TestInstrument&)>;

struct Case {
    const char* name;
    int voices = 4;
    std::uint64_t start = 0;
    Song song;
};

// Frames that differ by more than the tolerance.
std::size_t differing(const Stereo& a, const Stereo& b, float tolerance) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        count += !(std::fabs(a.left[i] - b.left[i]) <= tolerance) ||
                 !(std::fabs(a.right[i] - b.right[i]) <= tolerance);
    return count;
}

void compare(const Case& song, std::size_t seamFrames, float tolerance = 0.0f) {
    for (const bool sixteenBit : {true, false})
        for (const int channels : {1, 2}) {
            SCOPED_TRACE(std::string(song.name) + (sixteenBit ? ", 16-bit, " : ", float, ") +
                         std::to_string(channels) + " channels");
            Playing memory(song.voices, sixteenBit, channels, song.start);
            Playing disk(song.voices, sixteenBit, channels, song.start);
            makeStreaming(disk.instrument, chunk);
            disk.instrument.engine.alwaysAwaitBuffers(true);
            const Stereo expected = song.song(memory.instrument), got = song.song(disk.instrument);
            EXPECT_GT(
                differing(expected,
                          Stereo{std::vector<float>(expected.size()), std::vector<float>(expected.size())},
                          0.001f),
                expected.size() / 2);
            EXPECT_LE(differing(expected, got, tolerance), seamFrames);
            const StreamStats stats = disk.instrument.engine.streamStats();
            EXPECT_GT(stats.refills, 5u);
            EXPECT_EQ(stats.lateRefills, 0u);
            EXPECT_EQ(memory.instrument.engine.playingVoices(), disk.instrument.engine.playingVoices());
        }
}

TEST(StreamedEqualsMemory, ToTheBitWhereFramesAreReadWhole) {
    compare({"one shot to its end", 4, 0,
             [](TestInstrument& i) {
                 i.noteOn(60);
                 return i.render(61000);
             }},
            0);
    compare({"start offset", 4, 12345,
             [](TestInstrument& i) {
                 i.noteOn(60);
                 return i.render(50000);
             }},
            0);
    compare({"an octave up", 4, 0,
             [](TestInstrument& i) {
                 i.noteOn(72, 127, 100);
                 return i.render(31000);
             }},
            0);
    compare({"stolen, and stolen again while fading", 1, 0,
             [](TestInstrument& i) {
                 for (const int offset : {0, 20000, 20010, 40000, 40500})
                     i.noteOn(60, 127, static_cast<std::uint32_t>(offset));
                 return i.render(60000, 60000);
             }},
            0);
    compare({"chord, released", 4, 0,
             [](TestInstrument& i) {
                 for (int n = 0; n < 4; ++n)
                     i.noteOn(60, 90, static_cast<std::uint32_t>(1000 * n));
                 i.noteOff(60, 50000);
                 return i.render(60000, 60000);
             }},
            0);
}

// Interpolation does not look across the seams: three frames at each.
TEST(StreamedEqualsMemory, ExceptAtTheSeamsBetweenFrames) {
    compare({"bent", 4, 0,
             [](TestInstrument& i) {
                 i.noteOn(63);
                 i.bend(3000, 10000);
                 i.bend(12000, 20000);
                 return i.render(40000, 40000);
             }},
            20 * 4);
    compare({"glided legato", 4, 0,
             [](TestInstrument& i) {
                 i.engine.settings().playMode = static_cast<int>(PlayMode::Legato);
                 i.engine.settings().glideTime = 150.0f;
                 i.noteOn(58);
                 i.noteOn(61, 127, 9000);
                 i.noteOn(55, 127, 25000);
                 return i.render(50000, 50000);
             }},
            20 * 4);
    compare({"vibrato from another start frame", 4, 7001,
             [](TestInstrument& i) {
                 i.engine.settings().lfoDepth = 0.4f;
                 i.noteOn(59);
                 return i.render(40000, 4096);
             }},
            20 * 4, 1e-6f);
}

} // namespace
} // namespace zarno

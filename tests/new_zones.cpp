// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/LoadProblem.h"
#include "data/load/ZoneBuilder.h"
#include "data/sound/ZWaveFile.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"

#include <gtest/gtest.h>

namespace zarno {
namespace {

using namespace test;

TEST(ZonePoints, AreMovedIntoTheSample) {
    struct Points {
        std::uint64_t start, end, loopStart, loopEnd;
        bool operator==(const Points&) const = default;
    };
    const auto clamped = [](Points p, std::uint64_t frames) {
        ZoneRecord r;
        r.startFrame = p.start, r.endFrame = p.end, r.loopStart = p.loopStart, r.loopEnd = p.loopEnd;
        clampPoints(r, frames);
        return Points{r.startFrame, r.endFrame, r.loopStart, r.loopEnd};
    };
    EXPECT_EQ(clamped({0, 0, 0, 0}, 1), (Points{0, 1, 0, 1})) << "one frame";
    EXPECT_EQ(clamped({5, 90, 10, 80}, 100), (Points{5, 90, 10, 80})) << "sensible points stay";
    EXPECT_EQ(clamped({200, 300, 0, 400}, 100), (Points{98, 99, 98, 99}));
    EXPECT_EQ(clamped({50, 20, 60, 10}, 100), (Points{19, 20, 9, 10}));
    EXPECT_EQ(clamped({0, UINT64_MAX, UINT64_MAX, 0}, 100), (Points{0, 99, 0, 1}));
    EXPECT_EQ(clamped({7, 7, 7, 7}, 0), (Points{0, 1, 0, 1})) << "no frames at all";
}

TEST(NewZones, TakeTheirPointsFromTheWave) {
    const TempFolder folder;
    ZWaveFile wave;
    const std::string frames(400, 'x');
    ASSERT_TRUE(wave.open(folder.write(
        "a.wav", WaveBuilder().format(1, 44100, 16).data(frames).sampler(48, 2, 100, 199).bytes())));
    const ZoneRecord looped = recordFromSound(wave);
    EXPECT_EQ(looped.endFrame, 199u);
    EXPECT_EQ(looped.loopMode, 2);
    EXPECT_EQ(looped.loopStart, 100u);
    EXPECT_EQ(looped.loopEnd, 200u);
    EXPECT_EQ(looped.rootKey, 48);
    EXPECT_EQ(looped.release, 100.0f);
    ASSERT_TRUE(wave.open(folder.write("a.wav", rampWave(10))));
    const ZoneRecord plain = recordFromSound(wave);
    EXPECT_EQ(plain.loopMode, 0);
    EXPECT_EQ(plain.loopEnd, plain.endFrame);
    EXPECT_EQ(plain.endFrame, 9u);
}

TEST(NewZones, MayTakeTheirShareOfMemoryAndNoMore) {
    const TempFolder folder;
    const std::string a = folder.write("a.wav", rampWave(10)), b = folder.write("b.wav", rampWave(10));
    InstrumentSettings settings;
    settings.sixteenBit = 1;
    for (const bool streaming : {false, true}) {
        settings.streaming = streaming;
        settings.streamBufferFrames = 10;
        const auto build = [&](ZoneBuilder& builder, const std::string& path) {
            builder.recordChanged(*builder.fromWaveFile(path));
        };
        ZoneBuilder enough(settings, {}, 20), tooLittle(settings, {}, 19);
        EXPECT_NO_THROW(build(enough, a));
        EXPECT_THROW(build(enough, b), LimitExceeded);
        EXPECT_THROW(build(tooLittle, a), LimitExceeded);
    }
}

} // namespace
} // namespace zarno

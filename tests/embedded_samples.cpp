// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sound/ZEmbeddedSoundFile.h"
#include "engine/SampleMemory.h"
#include "platform/File.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

namespace zarno {
namespace {

using namespace test;
using testing::ElementsAre;

class EmbeddedSamples : public testing::Test {
  protected:
    bool open(const std::string& bytes, std::uint64_t position = 0) {
        return sound.open("a.wav", std::make_shared<const File>(folder.write("x.zse", bytes)), position);
    }
    std::vector<std::int16_t> shorts(std::uint64_t frames) {
        std::vector<std::int16_t> out(frames * sound.channelCount(), -99);
        out.resize(sound.readShort(out.data(), frames) * sound.channelCount());
        return out;
    }

    TempFolder folder;
    ZEmbeddedSoundFile sound;
};

TEST_F(EmbeddedSamples, AreReadInTheirOwnWidthOnly) {
    float f[4] = {};
    ASSERT_TRUE(open("??" + block(2, 22050, 1, 2, raw(std::int16_t{7}, std::int16_t{-7})) + "behind", 2));
    EXPECT_EQ(sound.sampleRate(), 22050);
    EXPECT_EQ(sound.readFloat(f, 2), 0u);
    EXPECT_THAT(shorts(9), ElementsAre(7, -7)) << "and nothing from behind the block";
    EXPECT_THAT(shorts(9), ElementsAre());
    sound.seekFrame(1);
    EXPECT_THAT(shorts(9), ElementsAre(-7));

    ASSERT_TRUE(open(block(4, 44100, 2, 1, raw(0.25f, -0.25f)) + "behind"));
    EXPECT_THAT(shorts(9), ElementsAre());
    EXPECT_EQ(sound.readFloat(f, 2), 1u);
    EXPECT_EQ(f[1], -0.25f);
    EXPECT_EQ(sound.storedSize(), 24u + 4u);
    EXPECT_EQ(sound.path(), "a.wav");
    EXPECT_FALSE(sound.hasLoop() || sound.hasRootNote());
}

TEST_F(EmbeddedSamples, OtherWidthsAndCutHeadersDoNotOpen) {
    for (const int width : {0, 1, 3, 8, -2})
        EXPECT_FALSE(open(block(width, 44100, 1, 1, "abcdefgh")));
    EXPECT_FALSE(open(block(2, 44100, 1, 0, "").substr(0, 23)));
    EXPECT_FALSE(open(block(2, 44100, 1, 0, ""), UINT64_MAX));
    EXPECT_FALSE(sound.open("a.wav", nullptr, 0));
    EXPECT_EQ(sound.lengthInFrames(), 0u);
}

TEST_F(EmbeddedSamples, AskingForMoreThanTheFileHoldsIsCut) {
    struct Case {
        std::int32_t channels;
        std::int64_t frames;
        std::uint64_t length;
    };
    for (const Case& c : {Case{1, 1000, 4},
                          {2, INT64_MAX, 2},
                          {1, -1, 0},
                          {1, INT64_MIN, 0},
                          {0, 4, 0},
                          {-2, 4, 0},
                          {INT32_MAX, INT64_MAX, 0},
                          {4, 1, 1},
                          {3, 9, 1},
                          {1, 0, 0}}) {
        ASSERT_TRUE(open(block(2, 44100, c.channels, c.frames, "abcdefgh")));
        EXPECT_EQ(sound.lengthInFrames(), c.length) << c.channels << " channels, " << c.frames << " frames";
        EXPECT_EQ(shorts(100).size(), c.length * sound.channelCount());
    }
}

TEST_F(EmbeddedSamples, TheFirstTwoOfManyChannelsAreHeard) {
    std::string data;
    for (std::int16_t i = 0; i < 30000; ++i)
        data += raw(i);
    ASSERT_TRUE(open(block(2, 44100, 3, 10000, data)));
    EXPECT_EQ(sound.channelCount(), 2);
    sound.seekFrame(1);
    const auto frames = shorts(10000);
    ASSERT_EQ(frames.size(), 2u * 9999u);
    for (int i = 0; i < 9999; ++i)
        ASSERT_EQ(frames[2 * i + 1], 3 * (i + 1) + 1);
}

TEST_F(EmbeddedSamples, ShareOneFileWithoutDisturbingEachOther) {
    const std::string first = block(2, 44100, 1, 3, "aabbcc"), second = block(2, 44100, 1, 3, "xxyyzz");
    auto file = std::make_shared<const File>(folder.write("x.zse", first + second));
    ZEmbeddedSoundFile other;
    ASSERT_TRUE(sound.open("1", file, 0) && other.open("2", file, first.size()));
    file.reset(); // the sounds keep it open
    std::int16_t x = 0;
    EXPECT_THAT(shorts(1), ElementsAre(0x6161));
    EXPECT_EQ(other.readShort(&x, 1), 1u);
    EXPECT_EQ(x, 0x7878);
    EXPECT_THAT(shorts(2), ElementsAre(0x6262, 0x6363));
}

TEST(SampleMemory, IsAlignedAndSilentAllAround) {
    for (const bool sixteenBit : {true, false}) {
        for (const int channels : {1, 2}) {
            SampleMemory memory;
            ASSERT_TRUE(memory.allocate(1000, channels, sixteenBit));
            const int width = channels * (sixteenBit ? 2 : 4);
            auto* frame0 = sixteenBit ? reinterpret_cast<std::uint8_t*>(memory.shorts())
                                      : reinterpret_cast<std::uint8_t*>(memory.floats());
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(frame0) % SampleMemory::alignment, 0u);
            EXPECT_EQ(memory.bytes(), 1000u * width);
            std::memset(frame0, 0xff, memory.bytes());
            const auto guard = static_cast<int>(SampleMemory::guardFrames) * width;
            for (int i = 1; i <= guard; ++i)
                ASSERT_TRUE(frame0[-i] == 0 && frame0[1000 * width + i - 1] == 0) << i;
        }
    }
}

TEST(SampleMemory, RefusesWhatCannotBe) {
    SampleMemory memory;
    ASSERT_TRUE(memory.allocate(1, 1, true));
    for (const std::uint64_t frames : {UINT64_MAX, UINT64_MAX / 8, std::uint64_t{1} << 61})
        EXPECT_FALSE(memory.allocate(frames, 2, false)) << frames;
    EXPECT_EQ(memory.frames(), 0u) << "what was held before is gone";
    EXPECT_FALSE(memory.allocate(1, 3, true) || memory.allocate(1, 0, true));
    EXPECT_TRUE(memory.allocate(0, 2, true));
}

} // namespace
} // namespace zarno

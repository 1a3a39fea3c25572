// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sound/ZEmbeddedSoundFile.h"
#include "data/sound/ZWaveFile.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <vector>

namespace zarno {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::ElementsAreArray;

class WaveFiles : public testing::Test {
  protected:
    bool open(const WaveBuilder& builder) { return open(builder.bytes()); }
    bool open(const std::string& bytes) { return wave.open(folder.write("a.wav", bytes)); }

    std::vector<float> floats(std::uint64_t frames) {
        std::vector<float> out(frames * wave.channelCount(), -9.0f);
        out.resize(wave.readFloat(out.data(), frames) * wave.channelCount());
        return out;
    }
    std::vector<std::int16_t> shorts(std::uint64_t frames) {
        std::vector<std::int16_t> out(frames * wave.channelCount(), -99);
        out.resize(wave.readShort(out.data(), frames) * wave.channelCount());
        return out;
    }

    TempFolder folder;
    ZWaveFile wave;
};

TEST_F(WaveFiles, SaysItsDefaultsBeforeItIsOpened) {
    EXPECT_EQ(wave.sampleRate(), 44100);
    EXPECT_EQ(wave.channelCount(), 2);
    EXPECT_FALSE(wave.isOpen());
    float frame[2];
    EXPECT_EQ(wave.readFloat(frame, 1), 0u);
}

struct Width {
    int channels, bits;
    std::string data;
    std::vector<float> floats;
    std::vector<std::int16_t> shorts;
};

TEST_F(WaveFiles, ConvertsEveryWidth) {
    const std::vector<Width> widths = {
        {1, 8, {"\x80\xff\x00", 3}, {0.0f, 0.9921875f, -1.0f}, {0, 32512, -32768}},
        // Stereo keeps the offset; as 16-bit integers the upper half wraps round.
        {2, 8, {"\x80\x00\x40\xff", 4}, {1.0f, 0.0f, 0.5f, 1.9921875f}, {-32768, 0, 16384, -256}},
        {1, 16, raw(std::int16_t{-32768}, std::int16_t{1}), {-1.0f, 1.0f / 32768}, {-32768, 1}},
        {2, 24, {"\x00\x00\x80\xff\xff\xff", 6}, {-1.0f, -1.0f / 8388608}, {-32768, 0}},
        {1, 24, {"\xff\xff\x7f\x00\x80\xff", 6}, {8388607.0f / 8388608, -1.0f / 256}, {32767, -128}},
        {1, 32, raw(INT32_MIN, std::int32_t{1} << 30), {-1.0f, 0.5f}, {0, 0}},
    };
    for (const auto& width : widths) {
        SCOPED_TRACE(std::to_string(width.bits) + " bits, channels " + std::to_string(width.channels));
        ASSERT_TRUE(open(WaveBuilder().format(width.channels, 48000, width.bits).data(width.data)));
        EXPECT_EQ(wave.sampleRate(), 48000);
        EXPECT_EQ(wave.bytesPerSample(), width.bits / 8);
        EXPECT_THAT(floats(10), ElementsAreArray(width.floats));
        wave.seekFrame(0);
        EXPECT_THAT(shorts(10), ElementsAreArray(width.shorts));
    }
}

TEST_F(WaveFiles, ReadsALongFileThroughManyChunks) {
    std::string data;
    for (int i = 0; i < 200000; ++i)
        data += raw(i * 40).substr(0, 3);
    ASSERT_TRUE(open(WaveBuilder().format(2, 44100, 24).data(data).chunk("tail", "0123456789")));
    const auto all = floats(150000);
    ASSERT_EQ(all.size(), 200000u) << "and nothing of the chunk behind";
    for (int i = 0; i < 200000; ++i)
        ASSERT_EQ(all[i], static_cast<float>(i * 40) / 8388608.0f) << i;
    wave.seekFrame(99999);
    EXPECT_THAT(floats(5), ElementsAre(all[199998], all[199999]));
    wave.seekFrame(UINT64_MAX);
    EXPECT_THAT(floats(5), ElementsAre());
}

TEST_F(WaveFiles, FindsRootNoteAndFirstLoop) {
    ASSERT_TRUE(open(WaveBuilder().format(1, 44100, 16).data("abcd").sampler(0x13c, 1, 100, 199)));
    EXPECT_TRUE(wave.hasRootNote());
    EXPECT_EQ(wave.rootNote(), 0x3c);
    EXPECT_TRUE(wave.hasLoop());
    EXPECT_EQ(wave.loopStart(), 100u);
    EXPECT_EQ(wave.loopEnd(), 200u);

    ASSERT_TRUE(open(WaveBuilder().format(1, 44100, 16).sampler(60, 0, 1, 2).data("abcd")));
    EXPECT_TRUE(wave.hasRootNote());
    EXPECT_FALSE(wave.hasLoop());
    ASSERT_TRUE(open(WaveBuilder().format(1, 44100, 16).data("abcd")));
    EXPECT_FALSE(wave.hasRootNote()) << "nothing is left of the file before";
}

TEST_F(WaveFiles, OnlyTheInstChunkIsPadded) {
    // "inst" with 7 bytes and its pad byte, then "data".
    const std::string format = WaveBuilder().format(1, 44100, 16).bytes().substr(12);
    const auto file = [&](const std::string& middle) {
        const std::string chunks = format + middle + "data" + raw(4u) + "abcd";
        return "RIFF" + raw(static_cast<std::uint32_t>(4 + chunks.size())) + "WAVE" + chunks;
    };
    ASSERT_TRUE(open(file("inst" + raw(7u) + "1234567" + std::string(1, '\0'))));
    EXPECT_EQ(wave.lengthInFrames(), 2u);
    ASSERT_TRUE(open(file("note" + raw(7u) + "1234567" + std::string(1, '\0'))));
    EXPECT_EQ(wave.lengthInFrames(), 0u) << "out of step by the pad byte";
}

TEST_F(WaveFiles, RefusesWhatItCannotPlay) {
    const auto pcm = [] { return WaveBuilder().format(1, 44100, 16); };
    const std::vector<std::pair<const char*, std::string>> files = {
        {"empty", ""},
        {"not RIFF", "RIFX" + pcm().data("ab").bytes().substr(4)},
        {"not WAVE", pcm().data("ab").bytes().replace(8, 4, "AVI ")},
        {"no format", WaveBuilder().chunk("LIST", "x").bytes()},
        {"float", WaveBuilder().format(1, 44100, 32, 4, 3).data("abcd").bytes()},
        {"three channels", WaveBuilder().format(3, 44100, 16).data("abcdef").bytes()},
        {"no channels", WaveBuilder().format(0, 44100, 16).data("ab").bytes()},
        {"12 bits", WaveBuilder().format(1, 44100, 12, 2).data("ab").bytes()},
        {"64 bits", WaveBuilder().format(1, 44100, 64).data("abcdefgh").bytes()},
        {"data before format", WaveBuilder().data("ab").format(1, 44100, 16).bytes()},
        {"cut in its format", pcm().bytes().substr(0, 30)},
    };
    for (const auto& [what, bytes] : files) {
        EXPECT_FALSE(open(bytes)) << what;
        EXPECT_FALSE(wave.isOpen()) << what;
        EXPECT_FALSE(wave.reopen()) << what;
        EXPECT_EQ(ZWaveFile::openCount(), 0) << what;
    }
    EXPECT_FALSE(wave.open(folder / "absent.wav"));
}

TEST_F(WaveFiles, LengthsBeyondTheFileAreCutThere) {
    const auto lying = WaveBuilder().format(1, 44100, 16).data("abcde", 0xFFFFFFFFu);
    for (const std::uint32_t riffSize : {0xFFFFFFFFu, 1000u}) {
        ASSERT_TRUE(open(lying.bytes(riffSize)));
        EXPECT_EQ(wave.lengthInFrames(), 2u);
        EXPECT_THAT(shorts(100), ElementsAre(0x6261, 0x6463));
        EXPECT_EQ(wave.storedSize(), riffSize);
    }
}

TEST_F(WaveFiles, FramesFurtherApartThanTheirSamplesArePicked) {
    ASSERT_TRUE(open(WaveBuilder().format(1, 44100, 16, 6).data("ab....cd....")));
    EXPECT_THAT(shorts(9), ElementsAre(0x6261, 0x6463));
    ASSERT_TRUE(open(WaveBuilder().format(2, 44100, 16, 1).data("abcdefgh")));
    EXPECT_THAT(shorts(9), ElementsAre(0x6261, 0x6463, 0x6665, 0x6867)) << "too close to be true";
}

TEST_F(WaveFiles, AMillionEmptyChunksDoNotHang) {
    std::string chunks;
    for (int i = 0; i < 1000000; ++i)
        chunks += "junk" + raw(0u);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(open("RIFF" + raw(0xFFFFFFFFu) + "WAVE" + chunks));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST_F(WaveFiles, ReopenNeedsNoHeader) {
    ASSERT_TRUE(open(rampWave(10)));
    floats(3);
    EXPECT_EQ(ZWaveFile::openCount(), 1);
    wave.close();
    wave.close();
    EXPECT_EQ(ZWaveFile::openCount(), 0);
    EXPECT_EQ(wave.lengthInFrames(), 10u);
    EXPECT_THAT(floats(1), ElementsAre());

    folder.write("a.wav", std::string(44, '?') + rampWave(10).substr(44));
    ASSERT_TRUE(wave.reopen());
    EXPECT_THAT(shorts(2), ElementsAre(1, 2)) << "from the start again";
    folder.write("a.wav", rampWave(10).substr(0, 44 + 6));
    ASSERT_TRUE(wave.reopen());
    wave.close();
    ASSERT_TRUE(wave.reopen());
    EXPECT_THAT(shorts(10), ElementsAre(1, 2, 3)) << "the file has shrunk meanwhile";
}

TEST_F(WaveFiles, BecomesASampleBlockOfEitherWidth) {
    ASSERT_TRUE(open(WaveBuilder().format(2, 22050, 24).data({"\x00\x00\x40\x00\x00\xc0", 6})));
    wave.close();
    for (const int width : {2, 4}) {
        std::ostringstream block;
        ASSERT_TRUE(wave.writeEmbedded(block, width));
        EXPECT_EQ(block.str().size(), 24u + 2u * width);
        EXPECT_FALSE(wave.isOpen()) << "as it was before";
        ZEmbeddedSoundFile embedded;
        auto file = std::make_shared<const File>(folder.write("block", block.str()));
        ASSERT_TRUE(embedded.open("a.wav", file, 0));
        EXPECT_EQ(embedded.sampleRate(), 22050);
        EXPECT_EQ(embedded.lengthInFrames(), 1u);
        float f[2] = {};
        std::int16_t s[2] = {};
        if (width == 4 && embedded.readFloat(f, 9) == 1)
            EXPECT_THAT(f, ElementsAre(0.5f, -0.5f));
        else if (embedded.readShort(s, 9) == 1)
            EXPECT_THAT(s, ElementsAre(16384, -16384));
        else
            ADD_FAILURE() << "nothing read";
    }
    std::ostringstream none;
    EXPECT_FALSE(wave.writeEmbedded(none, 3));
    EXPECT_FALSE(ZWaveFile().writeEmbedded(none, 2));
}

TEST_F(WaveFiles, IsNamedAfterWhatFollowsTheLastBackslash) {
    const std::string path = folder.write("x\\piano.wav", rampWave(1));
    ASSERT_TRUE(wave.open(path));
    wave.setNameFromPath();
    EXPECT_EQ(wave.name(), "piano.wav");
    EXPECT_EQ(wave.path(), path);
}

TEST_F(WaveFiles, ASecondFormatBehindTheDataPromisesNoMoreFrames) {
    ASSERT_TRUE(wave.open(folder.write(
        "a.wav", WaveBuilder().format(1, 44100, 8).data("12345678").format(2, 44100, 16, 100).bytes())));
    EXPECT_EQ(wave.lengthInFrames(), 0u);
}

} // namespace
} // namespace zarno

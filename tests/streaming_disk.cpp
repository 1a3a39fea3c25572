// SPDX-License-Identifier: GPL-3.0-or-later
// Disks that are slow, stuck or gone, in real time and offline.
#include "data/load/InstrumentLoader.h"
#include "data/sound/ZWaveFile.h"
#include "data/stream/DiskThread.h"
#include "tests/support/Gate.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/StreamingInstrument.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace zarno {
namespace {

void waitForRefills(const ZInstrument& engine, std::uint64_t count) {
    ASSERT_TRUE(comesTrue([&] { return engine.streamStats().refills >= count; }));
}

class SlowDisk : public testing::Test {
  protected:
    MemorySound& addLevel(float level, std::uint64_t frames, int key) {
        const TestSample sample = TestSample::level(level, frames);
        ZoneRecord record = plainZone(sample);
        record.lowKey = record.highKey = record.rootKey = key;
        ZGroup& group = played.addGroup();
        ZZone& zone = played.addZone(group, sample, record);
        played.engine.activateGroup(&group);
        return makeStreaming(zone, chunk);
    }
    void useStreaming() {
        played.engine.settings().streaming = 1;
        played.engine.settings().streamBufferFrames = chunk;
        played.engine.rebuildPool();
    }

    static constexpr int chunk = 4096;
    Gate gate; // opened before the instrument goes, which would leave the disk thread behind in it
    TestInstrument played{1};
};

// The render calls below would never return if one waited for the disk.
TEST_F(SlowDisk, NeverDelaysRealTimeAndALateBufferPlaysWhatItHolds) {
    useStreaming();
    addLevel(0.25f, 3 * chunk, 60);
    addLevel(0.5f, 20 * chunk, 61).onRead = [this](std::uint64_t) { gate.pass(); };
    played.noteOn(60);
    played.render(64);
    waitForRefills(played.engine, 2);
    played.render(2 * chunk + 64);
    waitForRefills(played.engine, 3);
    played.render(chunk);
    ASSERT_EQ(played.engine.playingVoices(), 0);
    const StreamStats before = played.engine.streamStats();
    EXPECT_EQ(before.lateRefills, 0u);
    EXPECT_EQ(before.mostVoices, 1);
    EXPECT_EQ(before.bytesRead, 2u * chunk * sizeof(float)) << "nothing is read behind the end";

    played.noteOn(61);
    const Stereo heard = played.render(4 * chunk);
    EXPECT_EQ(heard.left[chunk - 1], 0.5f) << "the preload";
    EXPECT_EQ(heard.left[2 * chunk + 5], 0.25f) << "the second buffer still holds the note before";
    EXPECT_EQ(played.engine.streamStats().voices, 1);
    EXPECT_GE(played.engine.streamStats().lateRefills, 2u);
    gate.open();
    waitForRefills(played.engine, before.refills + 2);
    EXPECT_EQ(played.render(2 * chunk).left.back(), 0.5f) << "and catches up";
}

TEST_F(SlowDisk, AFileThatVanishesLeavesTheNoteItsBuffers) {
    useStreaming();
    MemorySound& sound = addLevel(0.5f, 20 * chunk, 60);
    played.noteOn(60);
    played.render(64);
    waitForRefills(played.engine, 2);
    sound.absent = true;
    played.engine.alwaysAwaitBuffers(true);
    const Stereo heard = played.render(10 * chunk);
    EXPECT_EQ(heard.left.back(), 0.5f);
    EXPECT_EQ(played.engine.playingVoices(), 1);
    EXPECT_GT(played.engine.streamStats().failedRefills, 5u);
}

TEST(OfflineWaits, EndWhenTheDiskStandsStill) {
    AutoResetEvent event;
    StreamServer server(event, {60.0, 1000.0});
    server.beginBlock({.offline = true});
    RefillSlot slot;
    slot.post({});
    const auto began = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i)
        EXPECT_FALSE(server.awaitBuffer(slot));
    const auto took = std::chrono::steady_clock::now() - began;
    EXPECT_GE(took, std::chrono::milliseconds(60));
    EXPECT_LT(took, std::chrono::milliseconds(1000)) << "a dead disk delays a bounce once";
}

// The disk gets on with others: that is no reason to go on waiting for a read of ours that hangs.
TEST(OfflineWaits, EndWhenTheirReadHangsWhateverElseIsRead) {
    const TestSample sample = TestSample::level(0.5f, 1000);
    Gate gate;
    ZZone zone;
    const auto sound = std::make_shared<MemorySound>(sample.memory);
    sound->onRead = [&](std::uint64_t) { gate.pass(); };
    zone.sound = sound;
    zone.lengthInFrames = sample.frames();
    zone.mono = true;
    AutoResetEvent event;
    StreamServer server(event, {60.0, 20000.0});
    server.allocate(1, 64, false);
    RefillSlot& slot = server.ring(0).slot[0];
    slot.post({&zone, 0, 0.0});
    std::thread disk([&] { server.serviceStreams(); });
    ASSERT_TRUE(comesTrue([&] { return gate.waiting() == 1; }));
    std::atomic<bool> over{false};
    std::thread others([&] {
        for (; !over; std::this_thread::yield())
            DiskThread::countRead();
    });
    server.beginBlock({.offline = true});
    const auto began = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i)
        EXPECT_FALSE(server.awaitBuffer(slot));
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(5000));
    over = true;
    gate.open();
    others.join();
    disk.join();
    EXPECT_TRUE(server.awaitBuffer(slot)) << "what comes late comes all the same";
}

TEST(OfflineWaits, EndForWhoNeedsTheAudioThread) {
    AutoResetEvent event;
    StreamServer server(event, {60000.0, 60000.0});
    server.beginBlock({.offline = true});
    RefillSlot slot;
    slot.post({});
    std::thread host([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        server.hurry();
    });
    const auto began = std::chrono::steady_clock::now();
    EXPECT_FALSE(server.awaitBuffer(slot));
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(20000));
    host.join();
}

// Loads an instrument of real files that streams from them.
class StreamedFiles : public testing::Test {
  protected:
    StreamedFiles() {
        file.settings.streamBufferFramesStored = 1000;
        file.settings.polyphonyStored = 4;
    }
    void play() {
        const LoadResult result = loadInstrument(instrument, folder.write("x.zse", file.bytes()));
        ASSERT_TRUE(result) << sentence(result.problem);
        instrument.alwaysAwaitBuffers(true);
        instrument.postEvent(midi::noteOn, 0, 60, 127, 0);
        float* outputs[] = {left.data(), nullptr};
        instrument.renderBlock(outputs, 1, static_cast<int>(left.size()));
    }
    const ZZone& zone(std::size_t index) { return *instrument.groups().at(0)->zones().at(index); }

    test::TempFolder folder;
    test::InstrumentBuilder file;
    ZInstrument instrument;
    std::vector<float> left = std::vector<float>(6000);
};

// The value of frame n of a ramp, times a level that the engine reaches at full velocity.
void expectRamp(const std::vector<float>& heard, float perFrame, int first) {
    for (const int frame : {0, 999, 1000, 2999, 3000, 4998})
        EXPECT_NEAR(heard[static_cast<std::size_t>(frame)], static_cast<float>(frame + first) * perFrame,
                    1e-6f)
            << frame;
    EXPECT_EQ(heard[5500], 0.0f);
}

TEST_F(StreamedFiles, PlayFromWavesAndKeepNoneOpen) {
    folder.write("a.wav", test::rampWave(5001));
    file.groups = {{"G", {}, {test::zone("a.wav"), test::zone("a.wav"), test::zone("a.wav")}, {}}};
    for (auto& zone : file.groups[0].zones)
        zone.record.ignoreVelocity = 1;
    file.groups[0].zones[1].record.highKey = file.groups[0].zones[2].record.highKey = 10;
    file.groups[0].zones[2].record.startFrame = 10;
    play();
    expectRamp(left, 1.0f / 32768.0f, 1);
    EXPECT_EQ(ZWaveFile::openCount(), 0);
    EXPECT_EQ(zone(0).memory->frames(), 1000u) << "only the first chunk is in memory";
    EXPECT_EQ(zone(0).memory, zone(1).memory);
    EXPECT_EQ(zone(2).memory->shorts()[0], 11);
    EXPECT_EQ(zone(2).memory->shorts()[1000], zone(2).memory->shorts()[999]) << "repeated at the seam";
    EXPECT_GT(zone(0).lastAccessMs.load(), 0.0);
}

TEST_F(StreamedFiles, PlayFromTheInstrumentItself) {
    std::string data;
    for (int i = 0; i < 5001; ++i)
        data += test::raw(static_cast<float>(i) / 5001.0f);
    file.storage = 1;
    file.settings.sixteenBitStored = 0;
    file.groups = {{"G", {}, {test::zone("a", test::block(4, 44100, 1, 5001, data)), test::zone("a")}, {}}};
    file.groups[0].zones[0].record.ignoreVelocity = 1;
    file.groups[0].zones[1].record.highKey = 10;
    play();
    expectRamp(left, 1.0f / 5001.0f, 0);
    EXPECT_EQ(zone(1).memory, zone(0).memory);
}

TEST_F(StreamedFiles, DoNotUnrollLoopsIntoGigabytes) {
    folder.write("a.wav", test::rampWave(600));
    file.settings.streamBufferFramesStored = 4194304;
    file.settings.polyphonyStored = 1;
    auto looped = test::zone("a.wav");
    looped.record.loopMode = 2;
    looped.record.loopEnd = 500;
    file.groups = {{"G", {}, {}, {}}};
    for (looped.record.loopStart = 0; looped.record.loopStart < 300; ++looped.record.loopStart)
        file.groups[0].zones.push_back(looped);
    EXPECT_FALSE(loadInstrument(instrument, folder.write("x.zse", file.bytes())));
}

struct Bounce {
    Stereo heard;
    StreamStats stats;
};

// Sixteen seconds, as told to be offline; or untold, in a host that only renders twenty times too fast.
Bounce bounce(double megabytesPerSecond, int voices, bool told = true) {
    constexpr int rate = 44100, blockSize = 512, blocks = 16 * rate / blockSize;
    TestInstrument played(voices);
    played.engine.settings().sixteenBit = 1;
    const auto sample = TestSample::made(20 * rate, 1, true, rate, [](std::uint64_t n, int channel) {
        return static_cast<double>(n * 7919 % 20011) / 40000.0 / 8 + channel;
    });
    ZGroup& group = played.addGroup();
    ZZone& zone = played.addZone(group, sample);
    played.engine.activateGroup(&group);
    makeStreaming(played, 11025);
    if (megabytesPerSecond > 0)
        static_cast<MemorySound&>(*zone.sound).onRead = [=](std::uint64_t frames) {
            std::this_thread::sleep_for(
                std::chrono::microseconds(static_cast<int>(2.2 * frames / megabytesPerSecond)));
        };
    played.engine.setOffline(told);
    Bounce done;
    for (int block = 0; block < blocks; ++block) {
        if (block % 300 < voices) played.noteOn(50 + block % 300, 100, 7);
        if (block % 300 > 200) played.noteOff(250 - block % 300 + voices);
        const Stereo part = played.render(blockSize);
        if (!told) played.clock.advance(-0.95 * blockSize * 1000.0 / rate);
        done.heard.left.insert(done.heard.left.end(), part.left.begin(), part.left.end());
    }
    done.stats = played.engine.streamStats();
    return done;
}

TEST(OfflineWaits, MakeABounceFromASlowDiskTheSameToTheBit) {
    const Bounce fast = bounce(0, 1), slow = bounce(0.5, 1);
    EXPECT_EQ(fast.heard.left, slow.heard.left);
    EXPECT_EQ(slow.stats.lateRefills, 0u);
    EXPECT_LT(slow.stats.megabytesPerSecond(), 1.0);
    EXPECT_GT(slow.stats.bytesRead, 500'000u);
}

TEST(OfflineWaits, ABounceOfAHostThatDoesNotSayItBouncesIsTheSameToTheBit) {
    const Bounce told = bounce(20, 24), untold = bounce(20, 24, false);
    EXPECT_EQ(told.heard.left, untold.heard.left);
    EXPECT_EQ(untold.stats.lateRefills, 0u);
    EXPECT_EQ(untold.stats.mostVoices, 24);
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
// Many instruments, one disk thread. Worth most under the thread sanitizer.
#include "data/load/InstrumentLoader.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/Chance.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/StreamingInstrument.h"
#include "tests/support/TempFolder.h"
#include "tests/support/ThreadNames.h"
#include "tests/support/WaveBuilder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace zarno {
namespace {

constexpr int chunk = 600;

// An instrument in memory whose disk takes up to 50 ms for a read.
class Streaming {
  public:
    explicit Streaming(std::uint32_t seed, int slowestMs = 50)
        : chance_(seed) {
        makeZones();
        makeStreaming(played_, chunk);
        for (const auto& zone : played_.engine.groups()[0]->zones())
            static_cast<MemorySound&>(*zone->sound).onRead = [disk = Chance(seed), slowestMs,
                                                              this](std::uint64_t) mutable {
                reading = true;
                if (slowestMs > 0)
                    std::this_thread::sleep_for(std::chrono::milliseconds(disk.between(0, slowestMs)));
                reading = false;
            };
    }

    void play(int blocks) {
        for (int i = 0; i < blocks; ++i) {
            if (chance_.oneIn(3)) played_.noteOn(chance_.between(50, 80));
            if (chance_.oneIn(4)) played_.noteOff(chance_.between(50, 80));
            played_.render(256);
        }
    }
    ZInstrument& engine() { return played_.engine; }

    std::atomic<bool> reading{false};

  private:
    void makeZones() {
        ZGroup& group = played_.addGroup();
        for (int loopMode = 0; loopMode < 3; ++loopMode) {
            const TestSample sample = TestSample::sine(441.0, 9000);
            ZoneRecord record = plainZone(sample);
            record.loopMode = loopMode;
            record.loopStart = 4000;
            played_.addZone(group, sample, record);
        }
        played_.engine.activateGroup(&group);
    }

    Chance chance_;
    TestInstrument played_{8};
};

TEST(StreamingThreads, TheAudioThreadTakesNoMemory) {
    Streaming streaming(1, 0);
    std::vector<float> left(256), right(256);
    float* outputs[] = {left.data(), right.data()};
    const auto play = [&](int blocks) {
        for (int i = 0; i < blocks; ++i) {
            streaming.engine().postEvent(midi::noteOn, 0, 50 + i % 30, 100, 7);
            streaming.engine().renderBlock(outputs, 2, 256);
        }
    };
    play(20);
    const std::size_t before = allocationsOfThisThread();
    play(500);
    EXPECT_EQ(allocationsOfThisThread(), before);
    EXPECT_GT(streaming.engine().streamStats().refills, 10u);
}

std::string streamingFile(const test::TempFolder& folder) {
    folder.write("a.wav", test::rampWave(20000));
    test::InstrumentBuilder file;
    file.settings.streamBufferFramesStored = chunk;
    file.groups = {{"G", {}, {test::zone("a.wav"), test::zone("a.wav")}, {}}};
    file.groups[0].zones[1].record.loopMode = 2;
    file.groups[0].zones[1].record.loopEnd = 700;
    return folder.write("x.zse", file.bytes());
}

void playLoaded(ZInstrument& instrument, int blocks) {
    std::vector<float> left(256), right(256);
    float* outputs[] = {left.data(), right.data()};
    for (int i = 0; i < blocks; ++i) {
        instrument.postEvent(midi::noteOn, 0, 50 + i % 30, 100, 10);
        instrument.renderBlock(outputs, 2, 256);
    }
}

TEST(StreamingThreads, LoadOverPlayingNotesWhileOthersStream) {
    test::TempFolder folder;
    const std::string path = streamingFile(folder);
    std::vector<std::thread> players;
    for (std::uint32_t seed = 1; seed < 8; ++seed)
        players.emplace_back([seed] {
            Streaming streaming(seed);
            for (int i = 0; i < 20; ++i) {
                streaming.play(20);
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
            EXPECT_GT(streaming.engine().streamStats().mostVoices, 4);
        });
    ZInstrument instrument;
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(loadInstrument(instrument, path));
        playLoaded(instrument, 20);
        EXPECT_GT(instrument.streamStats().voices, 0);
    }
    EXPECT_TRUE(loadInstrument(instrument, path));
    EXPECT_EQ(instrument.streamStats().voices, 0);
    for (std::thread& player : players)
        player.join();
}

TEST(StreamingThreads, ALoadBeginsWhenTheDiskThreadIsOutside) {
    Streaming streaming(5);
    for (int i = 0; i < 20; ++i) {
        while (!streaming.reading)
            streaming.play(1);
        streaming.engine().setLoading(true);
        EXPECT_FALSE(streaming.reading);
        streaming.engine().setLoading(false);
    }
}

TEST(StreamingThreads, ComeAndGoWithTheirInstruments) {
    std::vector<std::thread> owners;
    for (std::uint32_t seed = 1; seed < 5; ++seed)
        owners.emplace_back([seed] {
            for (std::uint32_t i = 0; i < 25; ++i)
                Streaming(seed * 100 + i, static_cast<int>(i % 3)).play(20);
        });
    for (std::thread& owner : owners)
        owner.join();
}

int diskThreads() {
    return threadsNamed("ZSE Disk Thread");
}

TEST(StreamingThreads, ThereIsOneWhileThereAreInstruments) {
    EXPECT_EQ(diskThreads(), 0);
    for (int round = 0; round < 3; ++round) {
        auto first = std::make_unique<ZInstrument>();
        const ZInstrument second;
        first->setLoading(true);
        first.reset();
        while (diskThreads() == 0) // it names itself when it runs
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(diskThreads(), 1);
    }
    EXPECT_EQ(diskThreads(), 0);
}

} // namespace
} // namespace zarno

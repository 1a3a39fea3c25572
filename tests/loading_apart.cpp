// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LoadJob.h"
#include "tests/support/Chance.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/TempFolder.h"
#include "tests/support/ThreadNames.h"
#include "tests/support/WaveBuilder.h"

#include <chrono>
#include <thread>

namespace zarno::test {
namespace {

using Clock = std::chrono::steady_clock;

// Many samples of some megabytes, most of it holes, so that a load takes a while and no disk.
std::string slowInstrument(const TempFolder& folder) {
    constexpr std::uint32_t dataBytes = 6 << 20;
    InstrumentBuilder builder;
    builder.settings.streaming = builder.settings.streamingStored = 0;
    InstrumentBuilder::Group group{"Slow", {}, {}, {}};
    for (int i = 0; i < 12; ++i) {
        const std::string name = "s" + std::to_string(i) + ".wav";
        folder.write(name, WaveBuilder().format(1, 44100, 16).data("", dataBytes).bytes(dataBytes + 36));
        std::filesystem::resize_file(folder.path() / name, dataBytes + 44);
        group.zones.push_back(zone(name));
    }
    builder.groups.push_back(group);
    return folder.write("slow.zse", builder.bytes());
}

TEST(LoadingApart, ContentsComeWhole) {
    const TempFolder folder;
    const auto job = LoadJob::start({slowInstrument(folder), {}, {}, {}, false});
    ASSERT_TRUE(job);
    int opened = 0;
    for (auto state = job->wait(5); state != LoadJob::State::Finished; state = job->wait(5))
        if (state == LoadJob::State::Opened) {
            ++opened;
            job->proceed();
        }
    job->join();
    EXPECT_EQ(opened, 1);
    EXPECT_TRUE(job->result().loaded);
    ASSERT_EQ(job->contents().groups.size(), 1u);
    EXPECT_EQ(job->contents().groups[0]->zones().size(), 12u);
    EXPECT_GT(job->progress(), 0.9f);
}

TEST(LoadingApart, CancelledAtAnyMomentTheReaderEndsSoon) {
    const TempFolder folder;
    const std::string path = slowInstrument(folder);
    Chance chance(3);
    double longestMs = 0.0;
    int cancelled = 0;
    for (int i = 0; i < 100; ++i) {
        const auto job = LoadJob::start({path, {}, {}, {}, true});
        ASSERT_TRUE(job);
        if (!chance.oneIn(4)) {
            while (job->wait(5) == LoadJob::State::Reading) {
            }
            job->proceed(); // else the reader still waits for permission
        }
        std::this_thread::sleep_for(std::chrono::microseconds(chance.below(20000)));
        const auto begin = Clock::now();
        job->cancel();
        while (job->wait(5) != LoadJob::State::Finished) {
        }
        job->join();
        longestMs =
            std::max(longestMs, std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        cancelled += job->result().loaded ? 0 : 1;
    }
    EXPECT_LT(longestMs, 5000.0) << "a hang, even on a machine under load";
    EXPECT_GT(cancelled, 20);
    RecordProperty("longestMs", std::to_string(longestMs));
}

TEST(LoadingApart, AbandonedReaderEndsByItself) {
    const TempFolder folder;
    auto job = LoadJob::start({slowInstrument(folder), {}, {}, {}, false});
    ASSERT_TRUE(job);
    while (job->wait(5) == LoadJob::State::Reading) {
    }
    EXPECT_EQ(threadsNamed("ZSP Reader"), 1);
    job->cancel();
    LoadJob::abandon(std::move(job));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (threadsNamed("ZSP Reader") > 0 && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(threadsNamed("ZSP Reader"), 0);
}

} // namespace
} // namespace zarno::test

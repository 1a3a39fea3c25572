// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/AutoResetEvent.h"
#include "platform/Clock.h"
#include "platform/DenormalGuard.h"
#include "platform/Module.h"
#include "platform/Paths.h"
#include "platform/RunWithTimeout.h"
#include "platform/WorkerThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>

namespace zarno {
namespace {

TEST(PlatformEvent, SignalsAreKeptOnceAndTakenOnce) {
    AutoResetEvent event;
    EXPECT_FALSE(event.wait(0));
    event.signal();
    event.signal();
    EXPECT_TRUE(event.wait(0));
    EXPECT_FALSE(event.wait(0));
    event.signal();
    event.wait();
    EXPECT_FALSE(event.wait(1));
}

TEST(PlatformEvent, TimeoutWaitsAndDoesNotSpin) {
    AutoResetEvent event("zarno test event");
    const double before = systemClock().nowMs();
    EXPECT_FALSE(event.wait(1050));
    EXPECT_GE(systemClock().nowMs() - before, 1000.0);
}

// A ping-pong that ends only if no signal is ever lost, and whose plain counter is seen only if signal and
// wait order memory.
TEST(PlatformEvent, NoSignalIsLostBetweenTwoThreads) {
    constexpr int rounds = 20000;
    AutoResetEvent ping, pong;
    int counter = 0;
    std::atomic<bool> gaveUp{false};
    WorkerThread other;
    ASSERT_TRUE(other.start("ping pong", [&] {
        for (int i = 0; i < rounds && !gaveUp; ++i) {
            if (!ping.wait(10000)) gaveUp = true;
            ++counter;
            pong.signal();
        }
    }));
    for (int i = 0; i < rounds && !gaveUp; ++i) {
        ++counter;
        ping.signal();
        if (!pong.wait(10000)) gaveUp = true;
    }
    other.join();
    EXPECT_FALSE(gaveUp);
    EXPECT_EQ(counter, 2 * rounds);
}

TEST(PlatformThread, JoinWaitsForTheEndAndAThreadCanRunAgain) {
    std::atomic<int> runs{0};
    AutoResetEvent go;
    WorkerThread thread;
    EXPECT_FALSE(thread.isStarted());
    ASSERT_TRUE(thread.start(
        "a name longer than fifteen bytes", [&] { go.wait(), ++runs; }, WorkerThread::Priority::lowest));
    EXPECT_TRUE(thread.isStarted());
    go.signal();
    thread.join();
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(thread.isStarted());
    thread.join();
    ASSERT_TRUE(thread.start("again", [&] { ++runs; }));
    ASSERT_TRUE(thread.start("and again", [&] { ++runs; })); // joins the run before
    thread.join();
    EXPECT_EQ(runs, 3);
}

TEST(PlatformClock, RunsForward) {
    double last = systemClock().nowMs();
    for (int i = 0; i < 1000; ++i) {
        const double now = systemClock().nowMs();
        ASSERT_GE(now, last);
        last = now;
    }
}

TEST(RunWithTimeout, EndsOnlyWorkThatGivesNoSignOfLife) {
    const auto later = std::make_shared<AutoResetEvent>(), ended = std::make_shared<AutoResetEvent>();
    EXPECT_FALSE(runWithTimeout(50.0, [=](const SignOfLife&) {
        later->wait();
        ended->signal();
    }));
    later->signal();
    EXPECT_TRUE(ended->wait(20000)) << "it comes back, and harms nobody";
    const auto steps = std::make_shared<int>(0);
    EXPECT_TRUE(runWithTimeout(1000.0, [=](const SignOfLife& alive) {
        for (; *steps < 12; ++*steps, alive())
            later->wait(100);
    }));
    EXPECT_EQ(*steps, 12) << "longer than the timeout in all, but not in one step";
}

TEST(PlatformModule, IsThisProgram) {
    const auto path = modulePath();
    ASSERT_TRUE(isRegularFile(path)) << path;
    EXPECT_EQ(fileStem(path), "zarno_tests");
    const auto start = readModuleStart(64);
    ASSERT_EQ(start.size(), 64u);
#ifdef _WIN32
    EXPECT_EQ(std::string(start.begin(), start.begin() + 2), "MZ");
#else
    EXPECT_EQ(std::string(start.begin(), start.begin() + 4), "\x7F"
                                                             "ELF");
#endif
    EXPECT_TRUE(ModulePin().isHeld());
}

TEST(PlatformDenormals, AreZeroInsideTheGuardOnly) {
    volatile float tiny = std::numeric_limits<float>::min();
    volatile float denormal = std::numeric_limits<float>::denorm_min();
    {
        const DenormalGuard guard;
        EXPECT_EQ(tiny * 0.5f, 0.0f);
        EXPECT_EQ(denormal * 1e30f, 0.0f);
    }
    EXPECT_GT(tiny * 0.5f, 0.0f);
    EXPECT_GT(denormal * 1e30f, 0.0f);
}

} // namespace
} // namespace zarno

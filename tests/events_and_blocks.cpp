// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EventQueue.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/Gate.h"
#include "tests/support/RandomInstrument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace zarno {
namespace {

// First sample that sounds; -1 when none does.
int firstSound(const Stereo& out) {
    const auto found = std::ranges::find_if(out.left, [](float x) { return x != 0; });
    return found == out.left.end() ? -1 : static_cast<int>(found - out.left.begin());
}

TEST(EventsAndBlocks, ANoteBeginsAtItsSample) {
    for (const std::uint32_t offset : {0u, 1u, 100u, 127u, 128u, 129u, 511u}) {
        TestInstrument t;
        t.addLevel(0.5f);
        t.noteOn(60, 100, offset);
        EXPECT_EQ(firstSound(t.render(512)), static_cast<int>(offset));
    }
}

TEST(EventsAndBlocks, WhatIsDueBeyondTheBlockComesAtItsLastSample) {
    for (const std::uint32_t offset : {64u, 70u, 100000u, 0xFFFFFFFEu}) {
        TestInstrument t;
        t.addLevel(0.5f);
        t.noteOn(60, 100, offset);
        EXPECT_EQ(firstSound(t.render(64)), 63) << offset;
    }
}

TEST(EventsAndBlocks, AnEventThatIsNotDueHoldsBackThoseBehindIt) {
    TestInstrument t;
    t.addLevel(0.5f);
    t.controller(64, 0, 40);
    t.noteOn(60, 100, 10);
    t.noteOff(60, 5);
    t.noteOn(62, 100, 20);
    const Stereo out = t.render(64);
    EXPECT_EQ(firstSound(out), 40);
    EXPECT_EQ(out.left[40], 0.5f); // only the second note: the first was over before it was heard
}

TEST(EventsAndBlocks, ImmediateEventsBeginTheNextBlock) {
    TestInstrument t;
    t.addLevel(0.25f);
    t.clock.advance(100000);
    t.noteOn(60, 100, immediateOffset); // before the first block, however long that takes
    EXPECT_EQ(firstSound(t.render(64)), 0);
    t.clock.advance(-5000);
    t.noteOn(62, 100, immediateOffset);
    EXPECT_EQ(t.render(64).left[0], 0.5f);
    t.clock.advance(90000); // two times 44.1 s: the odd division's second sample
    t.noteOn(64, 100, immediateOffset);
    const Stereo out = t.render(64);
    EXPECT_EQ(out.left[1], 0.5f);
    EXPECT_EQ(out.left[2], 0.75f);
}

TEST(EventsAndBlocks, BlocksWithoutSamplesLeaveEventsWaitingAndOtherOutputsAreCleared) {
    TestInstrument t;
    t.addLevel(0.5f);
    t.noteOn(60, 100, 3);
    std::vector<float> left(8, 9.0f), right(8, 9.0f), third(8, 9.0f);
    float* outputs[] = {left.data(), right.data(), third.data()};
    t.engine.renderBlock(outputs, 3, 0);
    t.engine.renderBlock(outputs, 3, -4);
    EXPECT_EQ(left, std::vector<float>(8, 9.0f));
    t.engine.renderBlock(outputs, 3, 8);
    EXPECT_EQ(left, (std::vector<float>{0, 0, 0, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f}));
    EXPECT_EQ(right, left);
    EXPECT_EQ(third, std::vector<float>(8, 0.0f));
    float* some[] = {nullptr, right.data()};
    t.engine.renderBlock(some, 2, 8);
    EXPECT_EQ(right, std::vector<float>(8, 0.5f));
}

// A song of random notes and controllers, the same for every block size, rendered offline: told so, or in a host
// that only renders ten times too fast.
Stereo song(int blockSize, bool told = true) {
    TestInstrument t(6);
    Chance chance(11);
    fillAtRandom(t, chance, true);
    InstrumentSettings& settings = t.engine.settings();
    settings.reverbSend = 0.3f;
    settings.volume = 0.0f;
    settings.velocityFloor = -20;
    t.engine.applySettings();
    GroupRecord damper;
    damper.releaseTrigger = 1;
    damper.releaseDecayTime = 1000.0f;
    t.addLevel(0.1f, damper).record.ignoreVelocity = 0;
    t.engine.seedRandom(5);
    t.engine.setOffline(told);
    struct Due {
        int at, type, data1, data2;
    };
    std::vector<Due> events;
    constexpr int frames = 30000;
    for (int at = 0; at < frames - 11025; at += chance.between(0, 400)) {
        const int key = chance.between(48, 72);
        events.push_back({at, midi::noteOn, key, chance.between(1, 127)});
        events.push_back({at + 11025, midi::noteOff, key, 0}); // exactly a quarter of the damper's second
        if (chance.oneIn(3)) events.push_back({at, midi::pitchBend, 0, chance.below(128)});
        if (chance.oneIn(3)) events.push_back({at, midi::controller, 1, chance.below(128)});
    }
    std::ranges::stable_sort(events, {}, &Due::at);
    Stereo whole;
    std::size_t next = 0;
    for (int begin = 0; begin < frames; begin += blockSize) {
        const int end = std::min(begin + blockSize, frames);
        for (; next < events.size() && events[next].at < end; ++next)
            t.engine.postEvent(events[next].type, 0, events[next].data1, events[next].data2,
                               static_cast<std::uint32_t>(events[next].at - begin));
        const Stereo block = t.render(end - begin, end - begin);
        if (!told) t.clock.advance((end - begin) * -900.0 / 44100.0);
        whole.left.insert(whole.left.end(), block.left.begin(), block.left.end());
        whole.right.insert(whole.right.end(), block.right.begin(), block.right.end());
    }
    return whole;
}

TEST(EventsAndBlocks, OfflineTheBlockSizeChangesNothing) {
    const Stereo wanted = song(512);
    EXPECT_GT(std::ranges::count_if(wanted.left, [](float x) { return x != 0 && std::fabs(x) < 1; }), 20000);
    for (const int blockSize : {1, 7, 64, 4096, 30000}) {
        const Stereo got = song(blockSize);
        EXPECT_TRUE(got.left == wanted.left && got.right == wanted.right) << blockSize;
        const Stereo untold = song(blockSize, false);
        EXPECT_TRUE(untold.left == wanted.left && untold.right == wanted.right) << blockSize << ", untold";
    }
}

// Every caller numbers its events.
void postFromManyThreads() {
    constexpr std::uint32_t each = 20000, callers = 4;
    EventQueue queue;
    std::atomic<std::uint32_t> running{callers};
    std::vector<std::thread> threads;
    for (std::uint8_t caller = 0; caller < callers; ++caller)
        threads.emplace_back([&queue, &running, caller] {
            for (std::uint32_t n = 0; n < each; ++n)
                queue.push({caller, 0, 0, n});
            --running;
        });
    std::uint32_t next[callers] = {};
    bool inOrder = true;
    std::vector<EngineEvent> events;
    for (bool last = false; !last;) {
        last = running == 0;
        events.clear();
        queue.moveTo(events);
        for (const EngineEvent& event : events)
            inOrder &= event.sampleOffset == next[event.channel()]++;
        std::this_thread::yield(); // now and then the ring overflows
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(inOrder);
    for (const std::uint32_t count : next)
        EXPECT_EQ(count, each);
}

TEST(EventsAndBlocks, CallersLoseNothingAndKeepTheirOwnOrder) {
    for (int round = 0; round < 20 && !HasFailure(); ++round)
        postFromManyThreads();
}

// The caller hangs in the middle of making the overflow list longer: what is in the ring comes all the same.
TEST(EventsAndBlocks, ACallerThatTakesMemoryDoesNotHoldUpTheAudioThread) {
    if (!allocationsAreCounted) GTEST_SKIP();
    EventQueue queue;
    constexpr std::uint32_t first = EventQueue::ringSize + 1, all = first + 1000;
    std::vector<EngineEvent> events;
    for (std::uint32_t n = 0; n < first; ++n)
        queue.push({0, 0, 0, n});
    Gate memory;
    std::thread caller([&] {
        const AllocationsPass through([&] { memory.pass(); });
        for (std::uint32_t n = first; n < all; ++n)
            queue.push({0, 0, 0, n});
    });
    ASSERT_TRUE(comesTrue([&] { return memory.waiting() == 1; }));
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(500)); // for a queue that waits
        memory.open();
    });
    queue.moveTo(events);
    EXPECT_EQ(memory.waiting(), 1) << "it was waited for";
    EXPECT_EQ(events.size(), EventQueue::ringSize);
    caller.join();
    opener.join();
    queue.moveTo(events);
    ASSERT_EQ(events.size(), all);
    for (std::uint32_t n = 0; n < all; ++n)
        ASSERT_EQ(events[n].sampleOffset, n);
}

TEST(EventsAndBlocks, WarmedUpNothingIsAllocated) {
    if (!allocationsAreCounted) GTEST_SKIP();
    TestInstrument t;
    Chance chance(3);
    fillAtRandom(t, chance, false);
    std::vector<float> left(512), right(512);
    float* outputs[] = {left.data(), right.data()};
    const auto play = [&](int blocks) {
        const std::size_t before = allocationsOfThisThread();
        for (int block = 0; block < blocks; ++block) {
            for (int n = 0; n < 20; ++n) {
                const int type = chance.of({midi::noteOn, midi::noteOff, midi::controller, midi::pitchBend});
                t.engine.postEvent(type, chance.below(4), chance.below(128), chance.below(128),
                                   static_cast<std::uint32_t>(chance.below(512)));
            }
            if (chance.oneIn(20)) t.engine.resetControllers(0);
            t.engine.setSampleRate(chance.oneIn(20) ? 96000 : 44100);
            t.engine.renderBlock(outputs, 2, 512);
        }
        return allocationsOfThisThread() - before;
    };
    play(100);
    EXPECT_EQ(play(300), 0u);
    EXPECT_GT(std::make_unique<int>() ? allocationsOfThisThread() : 0, 0u); // the counter counts
}

} // namespace
} // namespace zarno

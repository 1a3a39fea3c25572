// SPDX-License-Identifier: GPL-3.0-or-later
// The window as a host opens it. Needs a display.
#include "tests/host/HostRig.h"
#include "tools/vsthost/EditorWindow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace zarno::test {
namespace {

std::vector<TimedEvent> notes() {
    std::vector<TimedEvent> events;
    for (int i = 0; i < 40; ++i) {
        events.push_back({i * 1103 + 7, noteOn(40 + i, 1 + i * 3)});
        events.push_back({i * 1103 + 900, {0x80, static_cast<std::uint8_t>(40 + i), 0}});
    }
    return events;
}

TEST(WindowOnScreen, ChangesNoSampleOfTheSong) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto play = [&](bool open) {
        const auto plugin = rig.loadActive();
        std::string error;
        std::unique_ptr<EditorWindow> window;
        if (open) {
            window = EditorWindow::open(*plugin, error);
            EXPECT_NE(window, nullptr) << error;
        }
        return render(*plugin, 48000, notes());
    };
    const Rendered closed = play(false);
    EXPECT_GE(firstSound(closed.left), 0);
    EXPECT_EQ(play(true), closed);
}

TEST(WindowOnScreen, OpensAndClosesWhileAudioRenders) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto plugin = rig.loadActive();
    std::atomic<bool> done{false};
    std::atomic<int> blocks{0};
    std::thread audio([&] {
        while (!done) {
            render(*plugin, 2048, {{3, noteOn(60)}, {1800, {0x80, 60, 0}}});
            ++blocks;
        }
    });
    constexpr int cycles = 100;
    for (int i = 0; i < cycles; ++i) {
        std::string error;
        const auto window = EditorWindow::open(*plugin, error);
        EXPECT_NE(window, nullptr) << error; // no early return: the thread must be joined
        if (window == nullptr) break;
    }
    done = true;
    audio.join();
    EXPECT_GT(blocks, cycles);
}

// Editors of two instances, opened before processing is turned on, twice without being closed, closed in any
// order.
TEST(WindowOnScreen, OfTwoInstancesInAnyOrder) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto sounds = [](HostedPlugin& plugin) {
        return firstSound(render(plugin, 512, {{7, noteOn(60)}}).left) == 7;
    };
    for (int round = 0; round < 5; ++round) {
        auto first = rig.load(), second = rig.load();
        std::string error;
        auto a = EditorWindow::open(*first, error), b = EditorWindow::open(*second, error);
        ASSERT_TRUE(a && b) << error;
        first->activate();
        second->activate();
        a->run(0.05);
        b->run(0.05);
        EXPECT_TRUE(sounds(*first) && sounds(*second));
        auto again = EditorWindow::open(*first, error);
        EXPECT_TRUE(again) << error;
        again->run(0.05);
        a.reset();
        if (round % 2 == 0) b.reset();
        first->deactivate();
        first->activate();
        EXPECT_TRUE(sounds(*first));
        again.reset();
        first.reset();
        if (b) b->run(0.05);
        EXPECT_EQ(sounds(*second), false) << "its note is still held";
        b.reset();
    }
}

} // namespace
} // namespace zarno::test

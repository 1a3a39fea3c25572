// SPDX-License-Identifier: GPL-3.0-or-later
// The window as a host opens it. Needs a display.
#include "tests/host/HostRig.h"
#include "tools/vsthost/HostWindow.h"
#include "tools/vsthost/NativeWindow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <set>
#include <thread>

namespace zarno::test {
namespace {

std::vector<TimedEvent> notes() {
    std::vector<TimedEvent> events;
    for (int i = 0; i < 40; ++i) {
        events.push_back({i * 1103 + 7, noteOn(40 + i, 1 + i * 3)});
        events.push_back({i * 1103 + 900, noteOff(40 + i)});
    }
    return events;
}

std::unique_ptr<HostWindow> openWindow(HostedPlugin& plugin) {
    std::string error;
    auto window = HostWindow::open(plugin, error);
    EXPECT_NE(window, nullptr) << error;
    return window;
}

TEST(WindowOnScreen, ChangesNoSampleOfTheSong) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto play = [&](bool open) {
        const auto plugin = rig.loadActive();
        const auto window = open ? openWindow(*plugin) : nullptr;
        return render(*plugin, 48000, notes());
    };
    const Rendered closed = play(false);
    EXPECT_GE(firstSound(closed.left), 0);
    EXPECT_EQ(play(true), closed);
}

// Plays notes on a thread of its own for as long as it lives.
class Audio {
  public:
    explicit Audio(HostedPlugin& plugin)
        : thread_([this, &plugin] {
            while (!done_) {
                render(plugin, 2048, {{3, noteOn(60)}, {1800, noteOff(60)}});
                ++blocks_;
            }
        }) {}
    ~Audio() {
        done_ = true;
        thread_.join();
    }
    int blocks() const { return blocks_; }

  private:
    std::atomic<bool> done_{false};
    std::atomic<int> blocks_{0};
    std::thread thread_;
};

TEST(WindowOnScreen, OpensAndClosesWhileAudioRenders) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto plugin = rig.loadActive();
    const Audio audio(*plugin);
    constexpr int cycles = 500;
    for (int i = 0; i < cycles; ++i) {
        const auto window = openWindow(*plugin);
        if (window == nullptr) break;
        if (i % 10 == 0) window->run(0.03); // long enough to be painted
    }
    EXPECT_GT(audio.blocks(), cycles);
}

TEST(WindowOnScreen, TakesTheSizeOfWhatIsLoadedMeanwhile) {
    HostRig rig;
    auto wide = levelInstrument("Wide");
    rig.addInstrument("a.zse", wide.bytes());
    wide.layout = "<player width='720' height='300'><label 2='1' width='200'/></player>";
    rig.addInstrument("b.zse", wide.bytes());
    const auto plugin = rig.loadActive();
    const auto window = openWindow(*plugin);
    ASSERT_NE(window, nullptr);
    const Audio audio(*plugin);
    for (const int program : {1, 0, 1, 0, 1}) {
        plugin->selectProgram(program);
        EXPECT_TRUE(plugin->waitForLoading(60));
        window->run(0.1);
        EXPECT_EQ(plugin->editorSize().width, program == 1 ? 720 : 593);
    }
    EXPECT_EQ(window->picture().width, 720);
}

TEST(WindowOnScreen, GrowsWithTheScaleOfTheHost) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto plugin = rig.loadActive();
    const auto window = openWindow(*plugin);
    ASSERT_NE(window, nullptr);
    const auto plain = plugin->editorSize();
    for (const float scale : {2.0f, 1.0f}) {
        plugin->call(Vst2::effVendorSpecific, 0x50726553, 0x41654373, nullptr, scale); // 'PreS', 'AeCs'
        window->run(0.1);
        EXPECT_EQ(plugin->editorSize().width, plain.width * scale);
        EXPECT_EQ(plugin->editorSize().height, plain.height * scale);
    }
}

int differing(const Picture& a, const Picture& b) {
    if (a.pixels.size() != b.pixels.size()) return std::numeric_limits<int>::max();
    int count = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
        count += a.pixels[i] != b.pixels[i] ? 1 : 0;
    return count;
}

// Also where the screen has no vertical blank for the framework to paint at.
TEST(WindowOnScreen, PaintsWhatChanges) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto plugin = rig.loadActive();
    const auto window = openWindow(*plugin);
    ASSERT_NE(window, nullptr);
    const auto shown = [&](const TimedEvent& event) {
        render(*plugin, 8192, {event}); // long enough for the release to end
        window->run(0.7);
        return window->picture();
    };
    const Picture silent = shown({0, noteOff(60)}), lit = shown({0, noteOn(60)});
    EXPECT_EQ(silent.width, plugin->editorSize().width);
    EXPECT_EQ(silent.pixels.size(), 3u * silent.width * silent.height);
    EXPECT_GT(std::set(silent.pixels.begin(), silent.pixels.end()).size(), 64u) << "one plain surface";
    const int ofTheKey = differing(lit, silent);
    EXPECT_GT(ofTheKey, 100);
    // An edge between two pixels may come out otherwise when only its surroundings are painted again.
    EXPECT_LT(differing(shown({0, noteOff(60)}), silent), ofTheKey / 10);
}

// A host that closes its own window first, and the editor afterwards or never.
TEST(WindowOnScreen, WhoseParentIsDestroyedUnderIt) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    const auto idle = [&] {
        for (int i = 0; i < 10; ++i) {
            plugin->idle();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    };
    for (const bool closes : {true, false, true}) {
        auto parent = NativeWindow::create(plugin->editorSize());
        ASSERT_TRUE(parent);
        ASSERT_TRUE(plugin->openEditor(parent->handle()));
        idle();
        parent.reset();
        idle();
        if (closes) plugin->closeEditor();
        const auto again = openWindow(*plugin);
        again->run(0.2);
        const auto pixels = again->picture().pixels;
        EXPECT_GT(std::set(pixels.begin(), pixels.end()).size(), 20u) << "it is drawn again";
    }
    EXPECT_EQ(firstSound(render(*plugin, 512, {{7, noteOn(60)}}).left), 7);
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
        auto a = HostWindow::open(*first, error), b = HostWindow::open(*second, error);
        ASSERT_TRUE(a && b) << error;
        first->activate();
        second->activate();
        a->run(0.05);
        b->run(0.05);
        EXPECT_TRUE(sounds(*first) && sounds(*second));
        auto again = HostWindow::open(*first, error);
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

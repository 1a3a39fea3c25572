// SPDX-License-Identifier: GPL-3.0-or-later
// What a load asks the user of the open window. The desktop's dialog program is played by a script that notes
// how it was called and answers with what a file says, or thinks for ever when there is none. Needs a
// display.
#ifndef _WIN32
#include "platform/Paths.h"
#include "tests/host/HostRig.h"
#include "tests/support/Chance.h"
#include "tests/support/WaveBuilder.h"
#include "tools/vsthost/HostWindow.h"
#include "tools/vsthost/PluginReport.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <cstring>

namespace zarno::test {
namespace {

using Clock = std::chrono::steady_clock;
using testing::ElementsAre;

constexpr int zones = 200;
constexpr const char* title = "--title=Locate Sample Folder for sample 0.wav";

class MissingSamplesOnScreen : public testing::Test {
  protected:
    MissingSamplesOnScreen() {
        const std::string script = rig.folder().write(
            "bin/zenity", "#!/bin/sh\n[ \"$1\" = --version ] && exit 0\ncd \"${0%/*}\"\n"
                          "echo $$ >>pids\nfor a; do case $a in --title*) echo \"$a\" >>asked; esac; done\n"
                          "[ -f answer ] && exec cat answer\nexec sleep 100\n");
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        const auto bin = parentPath(script);
        if (path.compare(0, bin.size(), bin) != 0) ::setenv("PATH", (bin + ":" + path).c_str(), 1);
        rig.addInstrument("a small.zse", levelInstrument("Small").bytes());
        addInstrumentWhoseFolderMoved();
    }
    ~MissingSamplesOnScreen() override { ::setenv("PATH", path.c_str(), 1); }

    void addInstrumentWhoseFolderMoved() {
        InstrumentBuilder builder = levelInstrument("Moved");
        builder.storage = 0;
        auto& group = builder.groups[0].zones;
        const auto playing = group[0].record;
        group.clear();
        const auto wave = WaveBuilder().format(1, 44100, 16).data(std::string(20000, '\x20')).bytes();
        for (int i = 0; i < zones; ++i) {
            const std::string name = "sample " + std::to_string(i) + ".wav";
            group.push_back(zone("gone\\" + name));
            group.back().record = playing;
            group.back().record.lowKey = group.back().record.highKey = i % 128;
            rig.folder().write("moved/deep/" + name, wave);
        }
        rig.addInstrument("b moved.zse", builder.bytes());
    }

    void open() {
        plugin = rig.loadActive();
        ASSERT_TRUE(plugin);
        std::string error;
        window = HostWindow::open(*plugin, error);
        ASSERT_TRUE(window) << error;
    }
    void close() {
        window.reset();
        plugin.reset();
    }
    void answerWith(const std::string& folder) { rig.folder().write("bin/answer", folder + "\n"); }
    std::vector<std::string> asked() const { return linesOf("bin/asked"); }
    std::vector<std::string> linesOf(const std::string& name) const {
        std::ifstream file(rig.folder() / name);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        return lines;
    }
    bool waitForDialog(std::size_t count = 1) {
        const auto end = Clock::now() + std::chrono::seconds(20);
        while (asked().size() < count && Clock::now() < end)
            window->run(0.01);
        return asked().size() == count;
    }
    // A process that was ended has no command line any more, if it is still listed at all.
    bool isDialogOpen() const {
        const auto pids = linesOf("bin/pids");
        return !pids.empty() && std::ifstream("/proc/" + pids.back() + "/cmdline").get() != EOF;
    }
    float levelOfNote(int key) {
        return render(*plugin, 512, {{0, noteOn(key)}, {505, noteOff(key)}}).left[500];
    }

    HostRig rig;
    const std::string path = std::getenv("PATH");
    std::unique_ptr<HostedPlugin> plugin;
    std::unique_ptr<HostWindow> window;
};

TEST_F(MissingSamplesOnScreen, OneAnswerFindsThemAllAndIsRemembered) {
    answerWith(rig.folder() / "moved");
    open();
    for (int i = 0; i < 2; ++i) {
        plugin->selectProgram(1);
        ASSERT_TRUE(plugin->waitForLoading(20.0));
        EXPECT_THAT(asked(), ElementsAre(title)) << "load " << i;
        EXPECT_GT(levelOfNote(127), 0.2f);
        plugin->selectProgram(0);
        ASSERT_TRUE(plugin->waitForLoading(20.0));
    }
    close();
    plugin = rig.loadActive();
    plugin->selectProgram(1);
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    EXPECT_GT(levelOfNote(127), 0.2f) << "another instance, without a window";
}

TEST_F(MissingSamplesOnScreen, WhoCancelsIsAskedOncePerLoad) {
    answerWith("");
    open();
    plugin->selectProgram(1);
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    EXPECT_THAT(asked(), ElementsAre(title));
    EXPECT_EQ(askPlugin(*plugin).currentProgram, 1);
    EXPECT_EQ(levelOfNote(127), 0.0f);
}

// The host waits for its chunk to be taken: the question follows, and the player's settings survive
// the answer.
TEST_F(MissingSamplesOnScreen, ARestoredProjectAsksBehindTheHostsBack) {
    open();
    plugin->selectProgram(1);
    ASSERT_TRUE(waitForDialog());
    answerWith("");
    window.reset();
    ASSERT_TRUE(plugin->waitForLoading(20.0)) << "a dialog goes with its window, and the load goes on";
    EXPECT_FALSE(isDialogOpen());
    auto chunk = plugin->chunk();
    const float quiet = -20.0f;
    std::memcpy(chunk.data() + pathBytes(chunk) + offsetof(InstrumentSettings, volume), &quiet, sizeof quiet);

    std::string error;
    window = HostWindow::open(*plugin, error);
    ASSERT_TRUE(window) << error;
    answerWith(rig.folder() / "moved");
    plugin->restore(chunk);
    EXPECT_EQ(plugin->chunk(), chunk);
    EXPECT_EQ(asked().size(), 1u);
    ASSERT_TRUE(waitForDialog(2));
    const auto end = Clock::now() + std::chrono::seconds(20);
    while (levelOfNote(127) == 0.0f && Clock::now() < end)
        window->run(0.05);
    EXPECT_NEAR(levelOfNote(127), 0.0251f, 0.002f);
    EXPECT_EQ(plugin->chunk(), chunk);
}

TEST_F(MissingSamplesOnScreen, ARestoreWaitsForNoAnswer) {
    open();
    const auto small = plugin->chunk();
    plugin->selectProgram(1);
    ASSERT_TRUE(waitForDialog());
    plugin->restore(small); // blocks the thread that the dialog needs
    EXPECT_EQ(askPlugin(*plugin).currentProgram, 0);
    EXPECT_GT(levelOfNote(60), 0.4f);
    window->run(0.1);
    EXPECT_FALSE(isDialogOpen());
}

// A window that is closed and opened again within one poll of the loading thread: the new one asks, too, or
// the load goes on without an answer.
TEST_F(MissingSamplesOnScreen, AQuestionIsNotLostWithItsWindow) {
    open();
    for (int round = 0; round < 10; ++round) {
        std::error_code ignored;
        std::filesystem::remove(rig.folder() / "bin/answer", ignored);
        std::filesystem::remove(rig.folder() / "bin/asked", ignored);
        plugin->selectProgram(1);
        ASSERT_TRUE(waitForDialog());
        answerWith("");
        ASSERT_TRUE(window->reopen());
        const auto end = Clock::now() + std::chrono::seconds(10);
        while (!plugin->waitForLoading(0.0) && Clock::now() < end)
            window->run(0.01);
        ASSERT_TRUE(plugin->waitForLoading(0.0))
            << "the load waits for an answer that never comes, round " << round;
        plugin->selectProgram(0);
        ASSERT_TRUE(plugin->waitForLoading(20.0));
    }
}

// Nobody answers; in three of four rounds nobody even shows the dialog, since the host's loop stands still.
TEST_F(MissingSamplesOnScreen, ClosedTwoHundredTimesWhileTheLoaderAsks) {
    const auto keepsTheModule = rig.load();
    Chance chance(9);
    double longestMs = 0.0;
    std::size_t dialogs = 0;
    int loading = 0;
    for (int i = 0; i < 200 && !testing::Test::HasFailure(); ++i) {
        open();
        plugin->selectProgram(1);
        if (i % 4 == 0) {
            EXPECT_TRUE(waitForDialog(++dialogs));
        }
        std::this_thread::sleep_for(std::chrono::microseconds(chance.below(10000)));
        loading += plugin->waitForLoading(0.0) ? 0 : 1;
        window.reset();
        const auto begin = Clock::now();
        plugin.reset();
        const std::chrono::duration<double, std::milli> took = Clock::now() - begin;
        longestMs = std::max(longestMs, took.count());
    }
    EXPECT_FALSE(isDialogOpen());
    std::printf("closed %d times in mid-load of 200, with %zu dialogs, longest %.0f ms\n", loading, dialogs,
                longestMs);
    EXPECT_GT(loading, 100);
    EXPECT_LT(longestMs, 10000.0) << "a hang, even on a machine under load";
}

} // namespace
} // namespace zarno::test
#endif

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/HostRig.h"
#include "tests/support/Chance.h"
#include "tools/vsthost/PluginReport.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace zarno::test {
namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

TEST(ClosingDuringLoad, TwoHundredTimesAtRandomMoments) {
    HostRig rig;
    addSlowLibrary(rig);
    const auto keepsTheModule = rig.load();
    ASSERT_TRUE(keepsTheModule);
    Chance chance(5);
    double longest = 0.0;
    int loading = 0;
    for (int i = 0; i < 200; ++i) {
        auto plugin = rig.load();
        ASSERT_TRUE(plugin);
        plugin->selectProgram(1);
        std::this_thread::sleep_for(std::chrono::microseconds(chance.below(8000)));
        loading += plugin->waitForLoading(0.0) ? 0 : 1;
        const auto begin = Clock::now();
        plugin.reset();
        longest = std::max(longest, millisecondsSince(begin));
    }
    std::printf("closed %d times in mid-load of 200, longest %.0f ms\n", loading, longest);
    EXPECT_GT(loading, 100);
    EXPECT_LT(longest, 10000.0) << "a hang, even on a machine under load";
}

TEST(ClosingDuringLoad, TheHostHearsZerosAndIsNotHeldUp) {
    HostRig rig;
    addSlowLibrary(rig);
    HostedPlugin::Options live;
    live.offline = false;
    const auto plugin = rig.loadActive(live);
    ASSERT_TRUE(plugin);
    render(*plugin, 1024, {{0, noteOn(60)}});
    plugin->selectProgram(1);
    double longest = 0.0;
    int blocks = 0;
    // The old instrument may sound until the loading thread runs; from then on there are zeros and nothing
    // else.
    bool silent = false, brokenSilence = false;
    while (!plugin->waitForLoading(0.0)) {
        const auto begin = Clock::now();
        const auto sound = render(*plugin, 512);
        longest = std::max(longest, millisecondsSince(begin));
        const bool hasSound = firstSound(sound.left) >= 0 || firstSound(sound.right) >= 0;
        brokenSilence = brokenSilence || (silent && hasSound);
        silent = silent || !hasSound;
        ++blocks;
    }
    std::printf("%d blocks during the load, longest %.2f ms\n", blocks, longest);
    EXPECT_GT(blocks, 0);
    EXPECT_TRUE(silent);
    EXPECT_FALSE(brokenSilence);
    EXPECT_EQ(askPlugin(*plugin).currentProgram, 1);
}

TEST(ClosingDuringLoad, AChoiceMadeMeanwhileStartsNothing) {
    HostRig rig;
    addSlowLibrary(rig);
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    plugin->selectProgram(1);
    plugin->selectProgram(0);
    EXPECT_EQ(askPlugin(*plugin).currentProgram, 0);
    const auto pathAlone = plugin->chunk();
    EXPECT_EQ(std::count(pathAlone.begin(), pathAlone.end(), 0), 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    plugin->restore(pathAlone); // waits for the running load, then loads what was chosen
    ASSERT_TRUE(plugin->waitForLoading(30.0));
    EXPECT_EQ(firstSound(render(*plugin, 512, {{5, noteOn(60)}}).left), 5) << "the small one plays";
}

} // namespace
} // namespace zarno::test

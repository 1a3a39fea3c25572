// SPDX-License-Identifier: GPL-3.0-or-later
// A share that has vanished: the system does not give a read back.
#include "data/Limits.h"
#include "tests/host/HostRig.h"
#include "tests/host/HungFile.h"
#include "tests/support/Gate.h"
#include "tests/support/ThreadNames.h"
#include "tests/support/WaveBuilder.h"

#include <chrono>
#include <thread>

namespace zarno::test {
namespace {

using hungFile::hanging;
using hungFile::hangs;
using hungFile::isLoaded;
using Clock = std::chrono::steady_clock;
using Plugin = std::unique_ptr<HostedPlugin>;

// "hung.wav" on a share that vanishes when a test says so.
class HungReads : public testing::Test {
  protected:
    HungReads() {
        rig.addInstrument("a small.zse", levelInstrument("Small").bytes());
        InstrumentBuilder builder = levelInstrument("Hung");
        builder.storage = 0;
        builder.settings.streaming = builder.settings.streamingStored = 1;
        builder.settings.streamBufferFrames = builder.settings.streamBufferFramesStored = 256;
        builder.groups[0].zones = {zone(hungFile::name)};
        rig.addInstrument(hungFile::name, rampWave(20000));
        rig.addInstrument("b hung.zse", builder.bytes());
    }
    ~HungReads() override {
        hangs = false;
        EXPECT_TRUE(comesTrue([] { return hanging == 0 && threadsNamed("ZSP Reader") == 0; }));
        EXPECT_TRUE(comesTrue([] { return threadsNamed("ZSE Disk Thread") == 0; }));
        const auto plugin = rig.loadActive();
        EXPECT_TRUE(plugin && firstSound(render(*plugin, 512, {{5, noteOn(60)}}).left) == 5);
    }
    Plugin load(bool active) {
        auto plugin = active ? rig.loadActive() : rig.load();
        if (plugin) hungFile::standBefore(rig.modulePath());
        return plugin;
    }
    // How long it took, in seconds.
    double timed(const char* what, const std::function<void()>& act) {
        const auto begin = Clock::now();
        act();
        const std::chrono::duration<double> took = Clock::now() - begin;
        std::printf("with a hung read, %s: %.2f s\n", what, took.count());
        return took.count();
    }

    HostRig rig;
};

TEST_F(HungReads, TheInstanceClosesAndTheModuleStaysUntilTheyReturn) {
    for (int round = 1; round <= 3; ++round) {
        auto plugin = load(false);
        ASSERT_TRUE(plugin);
        hangs = true;
        plugin->selectProgram(1);
        ASSERT_TRUE(comesTrue([&] { return hanging == round; }));
        EXPECT_LT(timed("closing during the load", [&] { plugin.reset(); }), 10.0);
        EXPECT_EQ(threadsNamed("ZSP Reader"), round);
        ASSERT_TRUE(isLoaded(rig.modulePath()));
    }
}

// What a host asks while the disk thread hangs: nothing takes longer than the patience with one read, and a
// margin for a machine under load. Not even while the audio thread of a bounce waits for that read.
TEST_F(HungReads, OfTheDiskThreadHoldUpNoHost) {
    std::vector<std::uint8_t> smallState;
    struct Act {
        const char* what;
        bool bounces;
        std::function<void(Plugin&)> act;
    };
    const Act acts[] = {
        {"restoring another state", true, [&](Plugin& plugin) { plugin->restore(smallState); }},
        {"another rate", true, [](Plugin& plugin) { plugin->activate(96000.0, 512); }},
        {"another instrument", false,
         [](Plugin& plugin) {
             plugin->selectProgram(0);
             EXPECT_TRUE(plugin->waitForLoading(20.0));
         }},
        {"saving", false, [](Plugin& plugin) { EXPECT_GT(plugin->chunk().size(), 600u); }},
        {"closing", false, [](Plugin& plugin) { plugin.reset(); }},
    };
    for (const Act& act : acts) {
        auto plugin = load(true);
        ASSERT_TRUE(plugin);
        smallState = plugin->chunk();
        plugin->selectProgram(1);
        ASSERT_TRUE(plugin->waitForLoading(20.0));
        hangs = true;
        plugin->setOffline(act.bounces);
        std::thread audio([&] { render(*plugin, 2048, {{0, noteOn(60)}}); });
        EXPECT_TRUE(comesTrue([&] { return hanging == 1; }));
        if (!act.bounces) audio.join();
        EXPECT_LT(timed(act.what, [&] { act.act(plugin); }), limits::hungReadMs / 1000.0 + 5.0);
        if (act.bounces) audio.join();
        EXPECT_LT(timed("closing", [&] { plugin.reset(); }), limits::hungReadMs / 1000.0 + 5.0);
        EXPECT_TRUE(isLoaded(rig.modulePath()));
        hangs = false;
        ASSERT_TRUE(comesTrue([] { return threadsNamed("ZSE Disk Thread") == 0; }));
    }
}

// The message thread of a host that opens a project waits for its instrument.
TEST_F(HungReads, OfALoadThatTheHostWaitsForEndIt) {
    const auto plugin = load(true);
    ASSERT_TRUE(plugin);
    plugin->selectProgram(1);
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    const auto state = plugin->chunk();
    hangs = true;
    EXPECT_LT(timed("restoring its state", [&] { plugin->restore(state); }),
              limits::stalledDiskMs / 1000.0 + 5.0);
    EXPECT_EQ(plugin->chunk(), state) << "nothing of the project is lost";
}

} // namespace
} // namespace zarno::test

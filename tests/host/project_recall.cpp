// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/HostRig.h"
#include "tools/vsthost/PluginReport.h"

#include <cmath>
#include <cstring>

namespace zarno::test {
namespace {

// Three groups of different levels, switched by hand only, so that the current one can be heard.
InstrumentBuilder threeGroups() {
    auto builder = levelInstrument("Three");
    builder.groups.clear();
    for (const double level : {0.125, 0.25, 0.5}) {
        const std::string name = "level " + std::to_string(level);
        auto playing = zone(name, monoBlock(100000, 44100, [level](int) { return level; }));
        playing.record.fixedPitch = 1;
        playing.record.ignoreVelocity = 1;
        GroupRecord record;
        record.trigger = static_cast<std::int32_t>(GroupTrigger::Manual);
        builder.groups.push_back({name, record, {playing}, {}});
    }
    return builder;
}

void put(std::vector<std::uint8_t>& chunk, std::size_t offset, std::int32_t value) {
    std::memcpy(chunk.data() + offset, &value, sizeof value);
}
void put(std::vector<std::uint8_t>& chunk, std::size_t offset, float value) {
    std::memcpy(chunk.data() + offset, &value, sizeof value);
}

std::size_t pathBytes(const std::vector<std::uint8_t>& chunk) {
    return static_cast<std::size_t>(std::find(chunk.begin(), chunk.end(), 0) - chunk.begin()) + 1;
}

float levelOf(HostedPlugin& plugin) {
    render(plugin, 44100, {{0, controller(123, 0)}});
    return render(plugin, 1000, {{0, noteOn(60)}}).left[900];
}

TEST(ProjectRecall, NothingLoadedIsSixHundredAndOneBytes) {
    const HostRig rig;
    const auto plugin = rig.load();
    ASSERT_TRUE(plugin);
    auto chunk = plugin->chunk();
    ASSERT_EQ(chunk.size(), 601u);
    EXPECT_EQ(chunk[0], 0);
    std::int32_t groups = -7, current = -7;
    std::memcpy(&groups, chunk.data() + 593, 4);
    std::memcpy(&current, chunk.data() + 597, 4);
    EXPECT_EQ(groups, 0);
    EXPECT_EQ(current, -1);
    plugin->restore(chunk);
    EXPECT_EQ(plugin->chunk(), chunk);
}

TEST(ProjectRecall, CurrentGroupAndSettingsComeBack) {
    HostRig rig;
    const auto path = rig.addInstrument("three.zse", threeGroups().bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    auto chunk = plugin->chunk();
    const std::size_t n = pathBytes(chunk);
    EXPECT_EQ(std::string(chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(n) - 1), path);
    ASSERT_EQ(chunk.size(), n + 600 + 3 * 580);
    EXPECT_FLOAT_EQ(levelOf(*plugin), 0.125f);

    put(chunk, n + 596, std::int32_t{1});                                     // the second group
    put(chunk, n + offsetof(InstrumentSettings, volume), -6.0f);              // restored
    put(chunk, n + offsetof(InstrumentSettings, polyphony), std::int32_t{3}); // the maker's
    put(chunk, n + 600 + 580 + offsetof(GroupRecord, volume), -12.0f);
    plugin->restore(chunk);
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    const double expected = 0.25 * std::pow(10.0, -18.0 / 20.0);
    EXPECT_NEAR(levelOf(*plugin), expected, expected * 0.001);

    const auto saved = plugin->chunk();
    std::int32_t current = -7, polyphony = -7;
    std::memcpy(&current, saved.data() + n + 596, 4);
    std::memcpy(&polyphony, saved.data() + n + offsetof(InstrumentSettings, polyphony), 4);
    EXPECT_EQ(current, 1);
    EXPECT_EQ(polyphony, 32);

    const auto another = rig.loadActive();
    ASSERT_TRUE(another);
    another->restore(saved);
    ASSERT_TRUE(another->waitForLoading(20.0));
    EXPECT_EQ(another->chunk(), saved);
    EXPECT_EQ(render(*plugin, 20000, {{0, controller(123, 0)}, {10000, noteOn(60)}}).left[15000],
              render(*another, 20000, {{10000, noteOn(60)}}).left[15000]);
}

TEST(ProjectRecall, AnotherGroupCountRestoresTheSettingsAlone) {
    HostRig rig;
    rig.addInstrument("three.zse", threeGroups().bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    auto chunk = plugin->chunk();
    const std::size_t n = pathBytes(chunk);
    put(chunk, n + offsetof(InstrumentSettings, volume), -6.0f);
    put(chunk, n + 592, std::int32_t{2});
    put(chunk, n + 596, std::int32_t{1});
    put(chunk, n + 600 + offsetof(GroupRecord, volume), -12.0f);
    plugin->restore(chunk);
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    const double expected = 0.125 * std::pow(10.0, -6.0 / 20.0);
    EXPECT_NEAR(levelOf(*plugin), expected, expected * 0.001);
}

TEST(ProjectRecall, TailsCutAnywhereStillLoadTheInstrument) {
    HostRig rig;
    rig.addInstrument("a first one.zse", levelInstrument("First").bytes());
    rig.addInstrument("three.zse", threeGroups().bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    plugin->selectProgram(1);
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    const auto whole = plugin->chunk();
    const std::size_t n = pathBytes(whole);
    for (const std::size_t tail : {0u, 1u, 79u, 80u, 591u, 592u, 599u, 600u, 1179u, 1180u, 2339u}) {
        plugin->selectProgram(0);
        ASSERT_TRUE(plugin->waitForLoading(20.0));
        plugin->restore({whole.data(), n + tail});
        ASSERT_TRUE(plugin->waitForLoading(20.0));
        EXPECT_EQ(askPlugin(*plugin).currentProgram, 1) << tail;
        EXPECT_EQ(plugin->chunk(), whole) << tail;
    }
    plugin->restore({whole.data(), n - 1}); // not even the zero byte
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    EXPECT_EQ(askPlugin(*plugin).currentProgram, 1);
}

} // namespace
} // namespace zarno::test

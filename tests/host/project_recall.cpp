// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Module.h"
#include "tests/host/HostRig.h"
#include "tests/support/Chance.h"
#include "tools/vsthost/PluginReport.h"

#include <cmath>
#include <cstdlib>
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

constexpr int pieceFrames = 30000;

std::string playPiece(HostedPlugin& plugin) {
    const auto sound = render(plugin, pieceFrames,
                              {{7, noteOn(60, 90)}, {9000, noteOn(47, 30)}, {20000, noteOff(60)}});
    std::string bytes(sizeof(float) * 2 * pieceFrames, '\0');
    std::memcpy(bytes.data(), sound.left.data(), bytes.size() / 2);
    std::memcpy(bytes.data() + bytes.size() / 2, sound.right.data(), bytes.size() / 2);
    return bytes;
}

// The second instrument of two in the library. Null when it does not load.
auto playThreeGroups(HostRig& rig) {
    rig.addInstrument("a first one.zse", levelInstrument("First").bytes());
    rig.addInstrument("three.zse", threeGroups().bytes());
    auto plugin = rig.loadActive();
    if (!plugin) return plugin;
    plugin->selectProgram(1);
    if (!plugin->waitForLoading(20.0)) plugin.reset();
    return plugin;
}

// Half of the next test, in a process of its own: restores a chunk and writes down what it hears.
TEST(ProjectRecall, DISABLED_TheOtherProcess) {
    const char* const folder = std::getenv("ZARNO_OTHER_PROCESS");
    ASSERT_NE(folder, nullptr);
    const std::string base = folder, own = HostRig().modulePath();
    std::ifstream file(base + "/chunk", std::ios::binary);
    const std::vector<std::uint8_t> chunk{std::istreambuf_iterator<char>(file), {}};
    std::string error;
    const auto plugin = HostedPlugin::load(base + "/Pack" + own.substr(own.rfind('.')), {}, error);
    ASSERT_TRUE(plugin) << error;
    plugin->restore(chunk);
    EXPECT_EQ(plugin->chunk(), chunk);
    plugin->activate();
    std::ofstream(base + "/sound", std::ios::binary) << playPiece(*plugin);
}

TEST(ProjectRecall, AnotherProcessSoundsTheSame) {
    HostRig rig;
    const auto plugin = playThreeGroups(rig);
    ASSERT_TRUE(plugin);
    auto chunk = plugin->chunk();
    put(chunk, pathBytes(chunk) + 596, std::int32_t{1});
    put(chunk, pathBytes(chunk) + 600 + 580 + offsetof(GroupRecord, volume), -7.0f);
    plugin->restore(chunk);
    const auto saved = plugin->chunk();
    rig.folder().write("chunk", std::string(saved.begin(), saved.end()));
    const std::string heard = playPiece(*plugin);
    EXPECT_NE(heard, std::string(heard.size(), '\0'));

    const std::string filter = " --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_TheOtherProcess";
#ifdef _WIN32
    ::_putenv_s("ZARNO_OTHER_PROCESS", rig.folder().path().string().c_str());
    const std::string command = "\"\"" + zarno::modulePath() + "\"" + filter + " >nul\"";
#else
    ::setenv("ZARNO_OTHER_PROCESS", rig.folder().path().c_str(), 1);
    const std::string command = "\"" + zarno::modulePath() + "\"" + filter + " >/dev/null";
#endif
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_TRUE(rig.folder().read("sound") == heard);
}

// Whatever a project holds: what is heard stays finite, and the next project is restored as if nothing had been.
TEST(ProjectRecall, DamagedChunksLeaveNoTrace) {
    const char* const wanted = std::getenv("ZARNO_DAMAGED_CHUNKS");
    const int rounds = wanted != nullptr ? std::atoi(wanted) : 300;
    HostRig rig;
    rig.addInstrument("three.zse", threeGroups().bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    const auto whole = plugin->chunk();
    const auto n = static_cast<int>(pathBytes(whole)), size = static_cast<int>(whole.size());
    const std::string piece = playPiece(*plugin);
    Chance chance(21);
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        auto chunk = whole;
        for (int edits = chance.between(1, 6); edits > 0; --edits) {
            const int from = chance.oneIn(30) ? 0 : n; // the path is mostly spared: without it nothing is read
            const auto at = static_cast<std::size_t>(chance.between(from, size - 4));
            const std::int32_t value = chance.of({0, -1, 1, 0x7F800000, 0x7FC00000, INT32_MAX, INT32_MIN,
                                                  static_cast<std::int32_t>(chance.bits())});
            std::memcpy(chunk.data() + at, &value, static_cast<std::size_t>(chance.between(1, 4)));
        }
        if (chance.oneIn(5)) chunk.resize(static_cast<std::size_t>(chance.between(0, size)));
        if (chunk.empty()) continue;
        plugin->restore(chunk);
        const auto sound = render(*plugin, 700, {{0, noteOn(chance.between(0, 127))}, {600, noteOff(60)}});
        for (const auto* channel : {&sound.left, &sound.right})
            EXPECT_TRUE(std::all_of(channel->begin(), channel->end(),
                                    [](float value) { return std::abs(value) <= 1.0f; }))
                << "round " << round;
    }
    plugin->restore(whole);
    EXPECT_EQ(plugin->chunk(), whole);
    plugin->call(Vst2::effMainsChanged, 0, 0);
    plugin->activate();
    render(*plugin, 44100);
    EXPECT_TRUE(playPiece(*plugin) == piece);
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
    const auto plugin = playThreeGroups(rig);
    ASSERT_TRUE(plugin);
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

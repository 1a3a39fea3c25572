// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Paths.h"
#include "tests/host/HostRig.h"
#include "tests/support/Chance.h"
#include "tests/support/WaveBuilder.h"
#include "tools/vsthost/PluginReport.h"

#include <cstring>
#include <thread>

namespace zarno::test {
namespace {

std::vector<std::uint8_t> withPath(const std::vector<std::uint8_t>& chunk, const std::string& path) {
    std::vector<std::uint8_t> changed(path.begin(), path.end());
    changed.push_back(0);
    changed.insert(changed.end(), chunk.begin() + static_cast<std::ptrdiff_t>(pathBytes(chunk)), chunk.end());
    return changed;
}

std::vector<std::uint8_t> withVolume(std::vector<std::uint8_t> chunk, float volume) {
    std::memcpy(chunk.data() + pathBytes(chunk) + offsetof(InstrumentSettings, volume), &volume,
                sizeof volume);
    return chunk;
}

TEST(MovedLibraries, TheInstrumentOfTheSameNameStandsIn) {
    HostRig rig;
    rig.addInstrument("a.zse", levelInstrument("A").bytes());
    const auto path = rig.addInstrument("sub/b.zse", levelInstrument("B").bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    const auto wanted = withVolume(plugin->chunk(), -6.0f);
    plugin->restore(withPath(wanted, "C:\\elsewhere\\b.zse"));
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    EXPECT_EQ(askPlugin(*plugin).currentProgram, 1);
    EXPECT_EQ(plugin->chunk(), withPath(wanted, path));
}

// A project keeps full paths; here module, library and all went elsewhere since.
TEST(MovedLibraries, TheWholeFolderMovedWithItsInstruments) {
    std::vector<std::uint8_t> saved;
    std::string before;
    HostRig now;
    {
        HostRig then;
        for (const HostRig* rig : {&then, &now})
            for (int i = 0; i < 3; ++i)
                rig->folder().write("Pack.instruments/sub/" + std::to_string(i) + ".zse",
                                    levelInstrument("I", 0.125 * (i + 1)).bytes());
        const auto plugin = then.loadActive();
        ASSERT_TRUE(plugin);
        plugin->selectProgram(2);
        ASSERT_TRUE(plugin->waitForLoading(20.0));
        saved = withVolume(plugin->chunk(), -6.0f);
        before = then.folder().path().string();
    }
    ASSERT_FALSE(std::filesystem::exists(before));
    const auto plugin = now.loadActive();
    ASSERT_TRUE(plugin);
    plugin->restore(saved);
    EXPECT_EQ(askPlugin(*plugin).currentProgram, 2);
    EXPECT_NEAR(render(*plugin, 1000, {{0, noteOn(60)}}).left[900], 0.375 * 0.501, 1e-3);
}

TEST(MovedLibraries, WithoutItsLibraryAProjectLosesNothing) {
    HostRig rig;
    rig.addInstrument("a.zse", levelInstrument("A").bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    const auto before = plugin->chunk();
    const auto foreign = withPath(withVolume(before, -6.0f), "/no/such/library/z.zse");
    plugin->restore(foreign);
    EXPECT_EQ(plugin->chunk(), foreign);
    EXPECT_EQ(plugin->chunk(), foreign) << "twice";
    plugin->selectProgram(0);
    ASSERT_TRUE(plugin->waitForLoading(20.0));
    EXPECT_EQ(plugin->chunk(), before) << "another one was chosen";
}

TEST(MovedLibraries, FiveInstancesInAnyOrder) {
    HostRig rig;
    std::vector<std::vector<std::uint8_t>> chunks;
    for (int i = 0; i < 5; ++i)
        rig.addInstrument(std::to_string(i) + ".zse", levelInstrument("I", 0.1 * (i + 1)).bytes());
    std::vector<std::unique_ptr<HostedPlugin>> plugins;
    for (int i = 0; i < 5; ++i) {
        plugins.push_back(rig.load());
        ASSERT_TRUE(plugins.back());
        plugins.back()->selectProgram(i);
        ASSERT_TRUE(plugins.back()->waitForLoading(20.0));
        chunks.push_back(plugins.back()->chunk());
        EXPECT_EQ(plugins.back()->chunk(), chunks.back());
    }
    plugins.clear();
    for (int i = 0; i < 5; ++i)
        plugins.push_back(rig.load());
    for (const int i : {3, 0, 4, 1, 2}) {
        if (i % 2 == 0) plugins[static_cast<std::size_t>(i)]->activate();
        plugins[static_cast<std::size_t>(i)]->restore(chunks[static_cast<std::size_t>(i)]);
        if (i % 2 != 0) plugins[static_cast<std::size_t>(i)]->activate();
    }
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(plugins[i]->chunk(), chunks[i]);
        EXPECT_NEAR(render(*plugins[i], 1000, {{0, noteOn(60)}}).left[900],
                    0.1 * (static_cast<double>(i) + 1.0), 1e-3);
    }
}

TEST(MovedLibraries, RestoredFromAnotherThreadWhileAudioRuns) {
    HostRig rig;
    rig.addInstrument("a.zse", levelInstrument("A").bytes());
    rig.addInstrument("b.zse", levelInstrument("B").bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    const auto chunk = plugin->chunk();
    std::atomic<bool> done{false};
    std::thread restoring([&] {
        for (int i = 0; i < 20; ++i)
            plugin->restore(chunk);
        done = true;
    });
    int key = 40;
    while (!done)
        render(*plugin, 512, {{0, noteOn(40 + key++ % 40)}});
    restoring.join();
    EXPECT_EQ(plugin->chunk(), chunk);
}

TEST(MovedLibraries, SamplesInAnotherCaseOrDeeperFolderAreFound) {
    HostRig rig;
    InstrumentBuilder builder;
    InstrumentBuilder::Group group{"G", {}, {}, {}};
    std::string frames;
    for (int i = 0; i < 5000; ++i)
        frames += raw(std::int16_t{16384});
    const auto wave = WaveBuilder().format(1, 44100, 16).data(frames).bytes();
    for (int i = 0; i < 200; ++i) {
        group.zones.push_back(zone("Samples " + std::to_string(i) + ".WAV"));
        group.zones.back().record.fixedPitch = group.zones.back().record.ignoreVelocity = 1;
        group.zones.back().record.lowKey = group.zones.back().record.highKey = i % 128;
        rig.addInstrument("moved/deep/samples " + std::to_string(i) + ".wav", wave);
    }
    builder.groups.push_back(group);
    rig.addInstrument("a.zse", builder.bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    EXPECT_EQ(firstSound(render(*plugin, 512, {{7, noteOn(100)}}).left), 7);
}

} // namespace
} // namespace zarno::test

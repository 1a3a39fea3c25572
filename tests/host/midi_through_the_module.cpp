// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/HostRig.h"
#include "tests/support/Chance.h"

#include <cmath>

namespace zarno::test {
namespace {

std::unique_ptr<HostedPlugin> levelPlayer(HostRig& rig, const HostedPlugin::Options& options = {}) {
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    return rig.loadActive(options);
}

TEST(MidiThroughTheModule, NoteStartsAtItsSample) {
    HostRig rig;
    const auto plugin = levelPlayer(rig);
    ASSERT_TRUE(plugin);
    const auto sound = render(*plugin, 1024, {{100, noteOn(60)}, {600, noteOff(60)}});
    EXPECT_EQ(firstSound(sound.left), 100);
    EXPECT_EQ(firstSound(sound.right), 100);
    EXPECT_NE(sound.left[599], 0.0f);

    plugin->deactivate();
    plugin->activate();
    EXPECT_EQ(firstSound(render(*plugin, 2048).left), -1) << "silent once more, and no event comes twice";
    EXPECT_EQ(firstSound(render(*plugin, 1024, {{0, noteOn(60)}}).left), 0);
}

TEST(MidiThroughTheModule, SystemExclusiveIsDroppedAndTheRestPlays) {
    HostRig rig;
    const auto plugin = levelPlayer(rig);
    ASSERT_TRUE(plugin);
    std::vector<std::uint8_t> sysex(300, 0x10);
    sysex.front() = 0xF0;
    sysex.back() = 0xF7;
    const std::vector<std::uint8_t> clock{0xF8};
    EXPECT_EQ(firstSound(render(*plugin, 512, {{3, sysex}, {4, clock}, {5, {0xF0, 0x01, 0x02, 0xF7}}}).left),
              -1);
    EXPECT_EQ(firstSound(render(*plugin, 512, {{3, sysex}, {7, noteOn(60)}, {9, sysex}}).left), 7);
}

TEST(MidiThroughTheModule, WithoutInstrumentThereIsSilence) {
    const auto plugin = HostRig().loadActive();
    ASSERT_TRUE(plugin);
    EXPECT_EQ(firstSound(render(*plugin, 2048, {{0, noteOn(60)}, {700, controller(7, 127)}}).left), -1);
}

TEST(MidiThroughTheModule, BypassIsSilentAndHeedsThePedal) {
    HostRig rig;
    const auto plugin = levelPlayer(rig);
    ASSERT_TRUE(plugin);
    render(*plugin, 512, {{0, noteOn(60)}});
    plugin->call(Vst2::effSetBypass, 0, 1);
    EXPECT_EQ(firstSound(render(*plugin, 1024, {{10, noteOn(64)}, {900, controller(64, 127)}}).left), -1);
    plugin->call(Vst2::effSetBypass, 0, 0);
    EXPECT_EQ(firstSound(render(*plugin, 1024).left), -1) << "no voice outlives the bypass";
    const auto held = render(*plugin, 4096, {{0, noteOn(60)}, {100, noteOff(60)}});
    EXPECT_NE(held.left[4000], 0.0f) << "the pedal went down during the bypass";
}

// What the host sent while it had us stopped is lost, so nothing may hang on to it.
TEST(MidiThroughTheModule, StoppingLiftsThePedal) {
    HostRig rig;
    const auto plugin = levelPlayer(rig);
    ASSERT_TRUE(plugin);
    render(*plugin, 512, {{0, controller(64, 127)}, {1, noteOn(60)}, {200, noteOff(60)}});
    plugin->deactivate();
    plugin->activate();
    for (const char* what : {"the note that it held", "a note that comes afterwards"}) {
        render(*plugin, 44100);
        EXPECT_EQ(firstSound(render(*plugin, 512).left), -1) << what;
        render(*plugin, 512, {{0, noteOn(60)}, {200, noteOff(60)}});
    }
}

// A piece for a few seconds with everything that moves: many notes, bends, wheel, pedal, expression.
std::vector<TimedEvent> busyPiece(int frames) {
    Chance chance(7);
    std::vector<TimedEvent> events;
    for (int i = 0; i < 400; ++i) {
        const auto at = static_cast<std::int64_t>(chance.below(frames));
        const int key = chance.between(40, 80);
        const auto value = static_cast<std::uint8_t>(chance.below(128));
        switch (chance.below(6)) {
        case 0:
            events.push_back({at, controller(chance.of({1, 11, 64, 7, 10}), value)});
            break;
        case 1:
            events.push_back({at, {0xE0, value, static_cast<std::uint8_t>(chance.below(128))}});
            break;
        case 2:
            events.push_back({at, noteOff(key)});
            break;
        default:
            events.push_back({at, noteOn(key, chance.between(1, 127))});
        }
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const auto& a, const auto& b) { return a.frame < b.frame; });
    return events;
}

InstrumentBuilder sineInstrument(double hertz, int rootKey) {
    auto builder = levelInstrument("Sine");
    auto& zone = builder.groups[0].zones[0];
    zone.block = monoBlock(200000, 44100, [hertz](int frame) {
        return 0.5 * std::sin(2.0 * 3.14159265358979 * hertz * frame / 44100.0);
    });
    zone.record.fixedPitch = 0;
    zone.record.rootKey = rootKey;
    zone.record.release = 300.0f;
    zone.record.ignoreVelocity = 0;
    return builder;
}

TEST(MidiThroughTheModule, BlockSizeMakesNoDifference) {
    HostRig rig;
    auto instrument = sineInstrument(440.0, 69);
    instrument.settings.reverbSend = 0.3f;
    rig.addInstrument("sine.zse", instrument.bytes());
    constexpr int frames = 40000;
    const auto piece = busyPiece(frames);
    Rendered first;
    for (const int block : {4096, 1, 7, 64, 512}) {
        HostedPlugin::Options options;
        options.blockSize = block;
        const auto plugin = rig.loadActive(options);
        ASSERT_TRUE(plugin);
        auto sound = render(*plugin, frames, piece);
        if (first.left.empty())
            first = std::move(sound);
        else
            EXPECT_TRUE(sound == first) << "blocks of " << block;
    }
    EXPECT_GT(*std::max_element(first.left.begin(), first.left.end()), 0.1f);
}

// Cycles a second between the first and the last upward crossing.
double frequencyOf(const std::vector<float>& samples, double rate) {
    double first = -1.0, last = -1.0;
    int cycles = -1;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        if (samples[i - 1] >= 0.0f || samples[i] < 0.0f) continue;
        last = static_cast<double>(i) - samples[i] / (static_cast<double>(samples[i]) - samples[i - 1]);
        if (first < 0.0) first = last;
        ++cycles;
    }
    return cycles * rate / (last - first);
}

TEST(MidiThroughTheModule, InTuneAtEveryRate) {
    HostRig rig;
    rig.addInstrument("sine.zse", sineInstrument(440.0, 69).bytes());
    const auto plugin = rig.load();
    ASSERT_TRUE(plugin);
    for (const int rate : {22050, 44100, 48000, 88200, 96000, 192000}) {
        plugin->activate(rate, 512);
        render(*plugin, rate / 2); // what sounded before has faded
        const auto sound = render(*plugin, rate, {{0, noteOn(69, 127)}, {rate - 1, noteOff(69)}});
        const double cents = 1200.0 * std::log2(frequencyOf(sound.left, rate) / 440.0);
        EXPECT_NEAR(cents, 0.0, 1.0) << rate;
    }
}

} // namespace
} // namespace zarno::test

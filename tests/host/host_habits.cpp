// SPDX-License-Identifier: GPL-3.0-or-later
// What hosts do, allowed or not. The plain rendering in blocks of 512 is what all others are held against.
#include "tests/host/BusyInstrument.h"
#include "tests/support/Chance.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <thread>
#ifdef __SSE2__
#include <xmmintrin.h>
#endif

namespace zarno::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::Le;

constexpr int frames = 40000;

std::vector<TimedEvent> piece() {
    std::vector<TimedEvent> events;
    for (int i = 0; i < 120; ++i) {
        const int key = 40 + i * 7 % 40;
        events.push_back({i * 313 + 5, noteOn(key, 1 + i)});
        events.push_back({i * 313 + 200, i % 9 == 0 ? controller(64, i % 2 * 127) : noteOff(key)});
    }
    return events;
}

class HostHabits : public testing::Test {
  protected:
    HostHabits() { rig.addInstrument("busy.zse", busyInstrument("Busy", {false, true, 0.2, 32}).bytes()); }

    std::unique_ptr<HostedPlugin> fresh() {
        auto plugin = rig.loadActive();
        EXPECT_TRUE(plugin && plugin->seedRandom(5));
        return plugin;
    }
    const Rendered& plain() {
        if (plain_.left.empty()) plain_ = render(*fresh(), frames, piece());
        EXPECT_GT(*std::max_element(plain_.left.begin(), plain_.left.end()), 0.05f);
        return plain_;
    }

    HostRig rig;

  private:
    Rendered plain_;
};

// One way of giving a plug-in its blocks: sizes from `shortest` to `longest`, whatever was announced, and
// which outputs there are.
struct Manner {
    const char* name;
    int announced, shortest, longest;
    bool left = true, right = true, shared = false;
};

Rendered renderIn(const Manner& manner, HostedPlugin& plugin, const std::vector<TimedEvent>& events) {
    Chance chance(9);
    Rendered sound{std::vector<float>(frames), std::vector<float>(frames)};
    std::size_t next = 0;
    for (int at = 0; at < frames;) {
        const int count = std::min(chance.between(manner.shortest, manner.longest), frames - at);
        std::vector<HostEvent> due;
        for (; next < events.size() && events[next].frame < at + count; ++next)
            due.push_back({static_cast<int>(events[next].frame - at), events[next].bytes});
        plugin.send(due);
        float* left = sound.left.data() + at;
        float* right = manner.shared ? left : sound.right.data() + at;
        plugin.process(manner.left ? left : nullptr, manner.right ? right : nullptr, count);
        at += count;
    }
    return sound;
}

TEST_F(HostHabits, BlocksAndOutputsOfAnyKindGiveTheSameSamples) {
    const Manner manners[] = {
        {"single samples", 512, 1, 1},
        {"long blocks", 8192, 8192, 8192},
        {"ever changing", 512, 1, 700},
        {"much longer than announced", 64, 1, 8192},
        {"no left", 64, 1, 2000, false, true},
        {"no right", 512, 512, 512, true, false},
        {"one for both", 64, 1, 2000, true, true, true},
    };
    for (const Manner& manner : manners) {
        SCOPED_TRACE(manner.name);
        const auto plugin = fresh();
        plugin->activate(44100, manner.announced);
        const Rendered sound = renderIn(manner, *plugin, piece());
        const auto& expectedLeft = manner.shared ? plain().right : plain().left;
        EXPECT_TRUE(!manner.left || sound.left == expectedLeft);
        EXPECT_TRUE(!manner.right || manner.shared || sound.right == plain().right);
    }
}

TEST_F(HostHabits, BlocksWithoutAnyOutputCountAsPlayed) {
    const auto plugin = fresh();
    const auto events = piece();
    const Manner unheard{"none", 512, 1, 3000, false, false};
    renderIn(unheard, *plugin, events);
    const auto again = fresh();
    render(*again, frames, events);
    EXPECT_EQ(render(*plugin, 5000), render(*again, 5000));
    float sample = 0.5f;
    plugin->process(&sample, &sample, 0);
    plugin->process(&sample, &sample, -1);
    EXPECT_EQ(sample, 0.5f);
    plugin->effect().processReplacing(const_cast<Vst2::AEffect*>(&plugin->effect()), nullptr, nullptr, 64);
}

TEST(HostEvents, WhateverTheirOrderAndOffset) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const struct {
        std::vector<HostEvent> events;
        int first;
    } rows[] = {
        {{{100, noteOn(60)}}, 100},
        {{{-7, noteOn(60)}}, 0},
        {{{512, noteOn(60)}}, 511},
        {{{2'000'000'000, noteOn(60)}}, 511},
        {{{300, noteOn(60)}, {40, noteOn(62)}}, 40},
        {{{50, noteOff(60)}, {20, noteOn(60)}, {70, noteOn(61)}}, 20},
        {{{9, {}}, {10, {0x90}}, {11, noteOn(60)}}, 11},
    };
    for (const auto& row : rows) {
        const auto plugin = rig.loadActive();
        ASSERT_TRUE(plugin);
        std::vector<float> left(512), right(512);
        plugin->send(row.events);
        plugin->process(left.data(), right.data(), 512);
        EXPECT_EQ(firstSound(left), row.first);
    }
}

TEST_F(HostHabits, ProcessingStopsAndGoesOnAsTheHostSays) {
    const auto plugin = rig.load();
    ASSERT_TRUE(plugin);
    const Rendered silence{std::vector<float>(1024), std::vector<float>(1024)};
    // Before it is turned on, and with a rate and a block size that nobody has said.
    render(*plugin, 512);
    EXPECT_GE(firstSound(render(*plugin, 2048, {{0, noteOn(60)}}).left), 0);
    for (int round = 0; round < 3; ++round) {
        plugin->activate();
        EXPECT_GE(firstSound(render(*plugin, 4096, {{0, noteOn(60, 127)}}).left), 0);
        plugin->deactivate();
        EXPECT_EQ(render(*plugin, 1024, {{0, noteOn(72)}}), silence) << "after it was turned off";
        plugin->call(Vst2::effSetBlockSize, 0, 4096);
        EXPECT_EQ(render(*plugin, 1024), silence) << "a new block size is no permission";
        plugin->call(Vst2::effMainsChanged, 0, 0);
    }
    plugin->activate();
    plugin->call(Vst2::effMainsChanged, 0, 1); // once more, without an end
    EXPECT_GE(firstSound(render(*plugin, 4096, {{0, noteOn(60, 127)}}).left), 0);
}

TEST_F(HostHabits, TurningOffWaitsForTheBlockThatIsBeingPlayed) {
    const auto plugin = fresh();
    for (bool wasInside = false; !wasInside;) {
        plugin->activate();
        plugin->send({{1'990'000, noteOn(60, 127)}});
        std::vector<float> left(2'000'000), right = left;
        std::atomic<bool> begun{false};
        std::thread audio([&] {
            begun = true;
            plugin->process(left.data(), right.data(), static_cast<int>(left.size()));
        });
        while (!begun)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        plugin->call(Vst2::effMainsChanged, 0, 0);
        const float atTheEnd = std::atomic_ref(left.back());
        audio.join();
        wasInside = left.back() != 0.0f; // else it came too late, and gave silence
        EXPECT_EQ(atTheEnd, left.back());
    }
}

TEST_F(HostHabits, ARateThatChangesInMidNoteKeepsTheNoteFiniteAndPlaying) {
    const auto plugin = fresh();
    for (const int rate : {96000, 44100, 8000, 384000, 22050}) {
        render(*plugin, 3000, {{0, noteOn(60)}, {1, noteOn(67)}});
        // Some change it without turning processing off.
        plugin->call(Vst2::effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
        plugin->call(Vst2::effMainsChanged, 0, 1);
        const auto sound = render(*plugin, 3000);
        EXPECT_GE(firstSound(sound.left), 0) << rate;
        EXPECT_THAT(sound.left, Each(AllOf(Ge(-1.0f), Le(1.0f)))) << rate;
    }
}

TEST_F(HostHabits, ThirtyInstancesAtOnceEachOnItsThread) {
    std::vector<std::unique_ptr<HostedPlugin>> plugins;
    for (int i = 0; i < 30; ++i)
        plugins.push_back(fresh());
    plain();
    std::vector<Rendered> sounds(plugins.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < plugins.size(); ++i)
        threads.emplace_back([&, i] { sounds[i] = render(*plugins[i], frames, piece()); });
    for (std::thread& thread : threads)
        thread.join();
    for (const Rendered& sound : sounds)
        EXPECT_TRUE(sound == plain());
    std::shuffle(plugins.begin(), plugins.end(), std::mt19937(3));
    while (!plugins.empty())
        plugins.pop_back();
}

#ifdef __SSE2__
// As some compilers set the processor up for their programs: results rounded down, and an exception for each
// division by zero, overflow and invalid operation.
class ForeignArithmetic {
  public:
    ForeignArithmetic()
        : usual_(_mm_getcsr()) {
        _mm_setcsr(foreign);
    }
    ~ForeignArithmetic() { _mm_setcsr(usual_); }
    static bool isLeftAlone() { return (_mm_getcsr() & ~_MM_EXCEPT_MASK) == foreign; }

  private:
    static constexpr unsigned masks =
        _MM_MASK_MASK & ~(_MM_MASK_INVALID | _MM_MASK_DIV_ZERO | _MM_MASK_OVERFLOW);
    static constexpr unsigned foreign = masks | _MM_ROUND_DOWN;

    unsigned usual_;
};

TEST_F(HostHabits, ArithmeticThatTheHostHasSetUpForItselfIsNotOurs) {
    plain();
    const ForeignArithmetic arithmetic;
    auto plugin = fresh();
    EXPECT_TRUE(ForeignArithmetic::isLeftAlone());
    EXPECT_TRUE(render(*plugin, frames, piece()) == plain());
    EXPECT_TRUE(ForeignArithmetic::isLeftAlone());
    plugin->restore(plugin->chunk());
    plugin.reset();
    EXPECT_TRUE(ForeignArithmetic::isLeftAlone());
}
#endif

// Everything that can be asked, with nothing to write the answer to and numbers that mean nothing.
TEST_F(HostHabits, CallsThatMakeNoSenseHarmNobody) {
    const auto plugin = fresh();
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    for (int opcode = -1; opcode <= 100; ++opcode) {
        if (opcode == Vst2::effClose) continue;
        const bool isPointer =
            opcode == Vst2::effSetSpeakerArrangement || opcode == Vst2::effGetSpeakerArrangement;
        for (const int number : {0, 1, -1, 7, most, -most - 1})
            for (const float option : {0.0f, -1.0f, 1e30f, std::numeric_limits<float>::quiet_NaN()})
                plugin->call(opcode, number, isPointer ? 0 : number, nullptr, option);
    }
    plugin->call(Vst2::effSetProgram);
    EXPECT_TRUE(plugin->waitForLoading(20.0));
    plugin->call(Vst2::effSetBypass);
    plugin->activate();
    plugin->seedRandom(5);
    EXPECT_TRUE(render(*plugin, frames, piece()) == plain());
}

// Nobody promises on which thread a host saves, restores, switches programs, or turns processing off.
TEST_F(HostHabits, AnyThreadSavesRestoresAndStopsWhileAudioRenders) {
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const auto plugin = fresh();
    const auto chunk = plugin->chunk();
    std::atomic<bool> done{false};
    std::thread audio([&] {
        while (!done)
            render(*plugin, 1000, {{3, noteOn(60)}, {800, noteOff(60)}});
    });
    const auto repeat = [](int times, auto&& act) {
        return std::thread([=] {
            for (int i = 0; i < times; ++i)
                act(i);
        });
    };
    std::vector<std::thread> others;
    others.push_back(repeat(200, [&](int) { EXPECT_GE(plugin->chunk().size(), 5u); }));
    others.push_back(repeat(200, [&](int) { plugin->chunk(); }));
    others.push_back(repeat(20, [&](int) { plugin->restore(chunk); }));
    others.push_back(repeat(20, [&](int i) { plugin->selectProgram(i % 2); }));
    others.push_back(repeat(100, [&](int i) {
        plugin->call(Vst2::effMainsChanged, 0, i % 2);
        plugin->call(Vst2::effSetBlockSize, 0, 64 << i % 8);
        plugin->call(Vst2::effSetBypass, 0, i % 3 == 0);
    }));
    for (std::thread& thread : others)
        thread.join();
    done = true;
    audio.join();
    plugin->call(Vst2::effSetBypass, 0, 0);
    ASSERT_TRUE(plugin->waitForLoading(30.0));
    plugin->restore(chunk);
    EXPECT_EQ(plugin->chunk(), chunk);
    plugin->activate();
    plugin->seedRandom(5);
    render(*plugin, 100000);
    EXPECT_GE(firstSound(render(*plugin, frames, piece()).left), 0);
}

// Told, a note is as long as what was rendered of it; else as long as the clock says, if that is longer. The
// release sample tells: it fades with the note's length.
TEST(ProcessLevel, IsHeededWithoutBeingTurnedOffAndOn) {
    HostRig rig;
    auto damper = levelInstrument("Damper");
    damper.groups[0].record.releaseTrigger = 1;
    damper.groups[0].record.releaseDecayTime = 300;
    damper.groups[0].zones[0].record.ignoreVelocity = 0;
    rig.addInstrument("damper.zse", damper.bytes());
    const auto plugin = rig.loadActive();
    for (const bool offline : {false, true, false, true}) {
        plugin->setOffline(offline);
        plugin->call(Vst2::effSetBypass, 0, 1); // ends what sounds
        render(*plugin, 512);
        plugin->call(Vst2::effSetBypass, 0, 0);
        render(*plugin, 512, {{0, noteOn(60)}});
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        const float level = render(*plugin, 512, {{0, noteOff(60)}}).left.back();
        EXPECT_EQ(level > 0.2f, offline) << level;
    }
}

} // namespace
} // namespace zarno::test

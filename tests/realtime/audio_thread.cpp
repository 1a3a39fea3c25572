// SPDX-License-Identifier: GPL-3.0-or-later
// The process call of the built module under the trap. ZARNO_TRAP_EVENTS gives the number of events for each
// mode.
#include "platform/Module.h"
#include "platform/Paths.h"
#include "shell/EntryOpcodes.h"
#include "tests/host/BusyInstrument.h"
#include "tests/realtime/EditorFingers.h"
#include "tools/trap/Trap.h"
#include "tools/vsthost/HostWindow.h"
#include "tools/vsthost/RandomPlayer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

namespace zarno::test {
namespace {

constexpr int longestBlock = 512;

std::uint64_t eventsForEach() {
    const char* wanted = std::getenv("ZARNO_TRAP_EVENTS");
    return wanted != nullptr ? std::strtoull(wanted, nullptr, 10) : 5'000;
}

// What a host's audio thread does for one block, watched.
trap::Counts processWatched(HostedPlugin& plugin, Vst2::VstEvents& events, int frames) {
    static thread_local float left[longestBlock], right[longestBlock];
    trap::Counts counts;
    const trap::Watch watch(counts);
    plugin.call(Vst2::effProcessEvents, 0, 0, &events);
    plugin.process(left, right, frames);
    return counts;
}

void addInstruments(HostRig& rig) {
    rig.addInstrument("a memory.zse", busyInstrument("Memory", {false, true, 0.3, 32}).bytes());
    rig.addInstrument("b streaming.zse", busyInstrument("Streaming", {true, true, 0.3, 32}).bytes());
    rig.addInstrument("c other.zse", busyInstrument("Other", {true, false, 0.0, 64}).bytes());
}

HostedPlugin::Options live() {
    HostedPlugin::Options options;
    options.offline = false;
    return options;
}

struct BadAct {
    const char* name;
    std::uint64_t trap::Counts::*noticedAs;
    bool isSystemCall;
};

void PrintTo(const BadAct& act, std::ostream* out) {
    *out << act.name;
}

class TrapShown : public testing::TestWithParam<BadAct> {};

TEST_P(TrapShown, NoticesWhatABadModuleDoes) {
    const BadAct& act = GetParam();
    if (act.isSystemCall && !trap::seesSystemCalls()) GTEST_SKIP() << "this kernel shows no system calls";
    ::setenv("ZARNO_BAD_ACT", act.name, 1);
    HostRig rig;
    std::filesystem::copy_file(joinPath(parentPath(zarno::modulePath()), "BadSamplerPlayer.so"),
                               rig.modulePath(), std::filesystem::copy_options::overwrite_existing);
    addInstruments(rig);
    const auto plugin = rig.loadActive(live());
    ASSERT_TRUE(plugin);
    RandomPlayer player(1);
    trap::Counts counts;
    for (int i = 0; i < 30; ++i)
        counts += processWatched(*plugin, player.play(64, 4), 64);
    EXPECT_GT(counts.*act.noticedAs, 0u);
    EXPECT_EQ(counts.forbidden(), counts.*act.noticedAs) << "and as nothing else\n" << trap::takeTraces();
    trap::takeTraces();
}

INSTANTIATE_TEST_SUITE_P(, TrapShown,
                         testing::Values(BadAct{"allocate", &trap::Counts::allocations, false},
                                         BadAct{"free", &trap::Counts::frees, false},
                                         BadAct{"lock", &trap::Counts::waits, false},
                                         BadAct{"sleep", &trap::Counts::waits, true},
                                         BadAct{"file", &trap::Counts::files, true},
                                         BadAct{"message", &trap::Counts::messages, true}),
                         [](const auto& row) { return row.param.name; });

struct Mode {
    const char* name;
    int controller, value;
};
constexpr Mode playModes[] = {{"poly", 127, 0}, {"mono", 126, 0}, {"legato", 68, 127}};
constexpr const char* kernelNames[] = {"none", "SSE2", "AVX2"};

// Plays on one plug-in until it is told to stop or has had its number of events; everything is watched.
class WatchedPlayer {
  public:
    WatchedPlayer(HostedPlugin& plugin, std::uint32_t seed)
        : plugin_(plugin)
        , player_(seed) {}

    void play(const Mode& mode, std::uint64_t events) {
        for (std::uint64_t done = 0; done < events;) {
            if (player_.below(16) == 0) setMode(mode); // the playing changes it
            const int frames = 1 + player_.below(player_.below(3) == 0 ? longestBlock : 96);
            const int count = player_.below(12);
            counts += processWatched(plugin_, player_.play(frames, count), frames);
            done += static_cast<std::uint64_t>(count);
        }
    }
    trap::Counts counts;

  private:
    void setMode(const Mode& mode) { plugin_.send({{0, controller(mode.controller, mode.value)}}); }

    HostedPlugin& plugin_;
    RandomPlayer player_;
};

// What goes on beside the audio thread, on the thread of the windows.
class Commotion {
  public:
    Commotion(HostedPlugin& played, HostedPlugin& other, int programs)
        : played_(played)
        , other_(other)
        , programs_(programs) {}

    void stir() {
        ++turns_;
        if (turns_ % 3 == 0) other_.selectProgram(turns_ / 3 % 3);
        if (turns_ % 7 == 0) played_.chunk();
        if (programs_ > 1 && turns_ % 11 == 0) played_.selectProgram(turns_ / 11 % programs_);
        if (turns_ % 40 == 1) toggleWindow();
        if (window_ != nullptr) {
            fingers_.move();
            window_->run(0.02);
        }
        other_.idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    int turns() const { return turns_; }

  private:
    void toggleWindow() {
        std::string error;
        if (window_ != nullptr)
            window_.reset();
        else
            window_ = HostWindow::open(played_, error);
        EXPECT_EQ(error, "");
    }

    HostedPlugin &played_, &other_;
    const int programs_;
    std::unique_ptr<HostWindow> window_;
    EditorFingers fingers_;
    int turns_ = 0;
};

void print(const std::string& what, const trap::Counts& counts, int turns) {
    std::printf("%-26s forbidden %llu; wake-ups %llu, other locks %llu, waits for the framework's lock %llu "
                "(longest %.3f ms), %d turns beside it\n",
                what.c_str(), static_cast<unsigned long long>(counts.forbidden()),
                static_cast<unsigned long long>(counts.wakeUps),
                static_cast<unsigned long long>(counts.locks),
                static_cast<unsigned long long>(counts.outerLockWaits), counts.longestOuterLockWaitMs, turns);
}

class AudioThread : public testing::Test {
  protected:
    void SetUp() override {
        addInstruments(rig);
        played = rig.loadActive(live());
        other = rig.loadActive(live());
        ASSERT_TRUE(played && other);
        for (const auto& plugin : {played.get(), other.get()})
            ASSERT_EQ(plugin->call(Vst2::effVendorSpecific, entryOpcode::magic, entryOpcode::playLive), 1);
    }

    // Plays in a thread of its own, with everything else going on here; programs: how many the played one
    // itself is switched through meanwhile.
    void check(const std::string& what, const Mode& mode, std::uint64_t events, int programs) {
        WatchedPlayer warmUp(*played, 7);
        warmUp.play(mode, 2000);
        trap::takeTraces();
        WatchedPlayer player(*played, 8);
        std::atomic<bool> done{false};
        std::thread audio([&] {
            player.play(mode, events);
            done = true;
        });
        Commotion commotion(*played, *other, programs);
        while (!done)
            commotion.stir();
        audio.join();
        print(what, player.counts, commotion.turns());
        EXPECT_EQ(player.counts.forbidden(), 0u) << what << "\n" << trap::takeTraces();
    }

    HostRig rig;
    std::unique_ptr<HostedPlugin> played, other;
};

TEST_F(AudioThread, TakesNothingAndWaitsForNobodyInAnyMode) {
    std::printf("%llu events for each mode, system calls %s\n",
                static_cast<unsigned long long>(eventsForEach()),
                trap::seesSystemCalls() ? "seen" : "NOT SEEN");
    for (int program = 0; program < 2; ++program) {
        played->selectProgram(program);
        ASSERT_TRUE(played->waitForLoading(30.0));
        for (std::uint32_t kernels = 0; kernels < std::size(kernelNames); ++kernels) {
            played->call(Vst2::effVendorSpecific, entryOpcode::magic, entryOpcode::useKernels,
                         reinterpret_cast<void*>(static_cast<std::uintptr_t>(kernels)));
            for (const Mode& mode : playModes)
                check(std::string(program == 0 ? "memory" : "streaming") + " " + mode.name + " " +
                          kernelNames[kernels],
                      mode, eventsForEach(), 1);
        }
    }
}

TEST_F(AudioThread, IsOnlyHeldUpByItsOwnLoads) {
    check("loads in the instance", playModes[0], eventsForEach(), 3);
}

} // namespace
} // namespace zarno::test

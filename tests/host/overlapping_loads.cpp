// SPDX-License-Identifier: GPL-3.0-or-later
// Projects that are restored, instruments that are chosen and states that are saved while a load is under
// way.
#include "tests/host/HostRig.h"
#include "tests/support/Chance.h"
#include "tools/vsthost/HostWindow.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace zarno::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Plugin = std::unique_ptr<HostedPlugin>;

Bytes withValues(Bytes chunk, float volume, float groupVolume) {
    const std::size_t n = pathBytes(chunk);
    std::memcpy(chunk.data() + n + offsetof(InstrumentSettings, volume), &volume, sizeof volume);
    std::memcpy(chunk.data() + n + 600 + offsetof(GroupRecord, volume), &groupVolume, sizeof groupVolume);
    return chunk;
}
Bytes withPath(const Bytes& chunk, const std::string& path) {
    Bytes changed(path.begin(), path.end());
    changed.push_back(0);
    changed.insert(changed.end(), chunk.begin() + static_cast<std::ptrdiff_t>(pathBytes(chunk)), chunk.end());
    return changed;
}
std::string pathOf(const Bytes& chunk) {
    return {chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(pathBytes(chunk)) - 1};
}

class OverlappingLoads : public testing::Test {
  protected:
    OverlappingLoads() { addSlowLibrary(rig); }
    void SetUp() override {
        plugin = rig.loadActive();
        ASSERT_TRUE(plugin);
        small = plugin->chunk();
        plugin->selectProgram(1);
        ASSERT_TRUE(plugin->waitForLoading(20.0));
        slow = plugin->chunk();
        plugin->selectProgram(0);
        ASSERT_TRUE(plugin->waitForLoading(20.0));
    }
    void quiet() { ASSERT_TRUE(plugin->waitForLoading(20.0)); }

    HostRig rig;
    Plugin plugin;
    Bytes small, slow; // chunks with the values of the files
};

TEST_F(OverlappingLoads, ARestoreDuringALoadKeepsItsSettings) {
    for (int i = 0; i < 12; ++i) {
        const auto wanted = withValues(i % 2 == 0 ? small : slow, -6.0f - static_cast<float>(i), -12.0f);
        plugin->selectProgram(1);
        std::this_thread::sleep_for(std::chrono::milliseconds(i));
        plugin->restore(wanted);
        quiet();
        EXPECT_EQ(plugin->chunk(), wanted) << i;
        plugin->selectProgram(i % 2 == 0 ? 1 : 0);
        quiet();
        EXPECT_EQ(plugin->chunk(), i % 2 == 0 ? slow : small) << "the next choice has the values of its file";
        plugin->selectProgram(0);
        quiet();
    }
}

TEST_F(OverlappingLoads, OfTwoRestoresAtOnceTheLastOneStays) {
    for (int i = 0; i < 12; ++i) {
        const auto first = withValues(slow, -20.0f, -3.0f),
                   second = withValues(i % 2 == 0 ? slow : small, -9.0f, -1.0f);
        std::thread other([&] { plugin->restore(first); });
        while (plugin->chunk() != first)
            std::this_thread::yield();
        plugin->restore(second);
        other.join();
        EXPECT_EQ(plugin->chunk(), second) << i;
    }
}

TEST_F(OverlappingLoads, AChoiceDuringALoadIsSavedWithTheEnginesValues) {
    plugin->selectProgram(1);
    plugin->selectProgram(0);
    quiet();
    EXPECT_EQ(plugin->chunk(), withPath(slow, pathOf(small)))
        << "the path that was chosen, all that is loaded";
    plugin->selectProgram(0);
    quiet();
    EXPECT_EQ(plugin->chunk(), small) << "chosen again, it loads";
}

TEST_F(OverlappingLoads, ChoosingWhatFailedTriesAgain) {
    const auto path = rig.folder().path() / "Pack.instruments" / "b slow.zse";
    const auto aside = rig.folder().path() / "aside.zse";
    std::filesystem::rename(path, aside);
    plugin->selectProgram(1);
    quiet();
    std::filesystem::rename(aside, path);
    plugin->selectProgram(1);
    quiet();
    EXPECT_EQ(plugin->chunk(), slow);
}

TEST_F(OverlappingLoads, AMissingInstrumentIsSilentAndLosesNothing) {
    const auto missing = withPath(withValues(small, -6.0f, -3.0f), "/no/such/folder/gone.zse");
    plugin->restore(missing);
    EXPECT_EQ(plugin->chunk(), missing);
    EXPECT_EQ(firstSound(render(*plugin, 1000, {{0, noteOn(60)}}).left), -1) << "another instrument plays";
}

int stressSteps(int usual) {
    const char* const wanted = std::getenv("ZARNO_STRESS_STEPS");
    return wanted != nullptr ? std::atoi(wanted) : usual;
}

// What hosts, users and their threads do to one instance, at random. At each quiet point the saved state is
// what the last request asked for. ZARNO_STRESS_STEPS asks for more steps.
class RandomRequests : public OverlappingLoads {
  protected:
    Bytes anyChunk(Chance& by) const {
        return withValues(by.oneIn(3) ? slow : small, -static_cast<float>(by.below(40)),
                          -static_cast<float>(by.below(20)));
    }
    int anyProgram() { return static_cast<int>(chance.below(2)); }
    void pause() { std::this_thread::sleep_for(std::chrono::microseconds(chance.below(3000))); }

    void makeOne(bool withWindow) {
        switch (chance.below(withWindow ? 8 : 6)) {
        case 0:
            return plugin->restore(anyChunk(chance));
        case 1:
            return static_cast<void>(plugin->chunk());
        case 2:
            return plugin->setOffline(chance.oneIn(2));
        case 3:
            return pause();
        case 6:
            return toggleWindow();
        case 7:
            return runWindow();
        default:
            return plugin->selectProgram(anyProgram());
        }
    }
    void toggleWindow() {
        std::string error;
        if (window)
            window.reset();
        else
            window = HostWindow::open(*plugin, error);
    }
    void runWindow() {
        if (window) window->run(0.005);
    }

    // Beside an audio thread and another thread of the host's.
    void makeSome(int count, bool withWindow) {
        std::atomic<bool> stop{false};
        std::thread audio([&] {
            for (int key = 0; !stop; key = (key + 1) % 40)
                render(*plugin, 256, {{0, noteOn(40 + key)}, {200, noteOff(40 + key)}});
        });
        std::thread otherHostThread([&, seed = chance.bits()] {
            for (Chance by(seed); !stop;)
                by.oneIn(2) ? plugin->restore(anyChunk(by)) : static_cast<void>(plugin->chunk());
        });
        for (int i = 0; i < count; ++i)
            makeOne(withWindow);
        stop = true;
        otherHostThread.join();
        audio.join();
    }
    // Overlaps with the load that the choice before it began.
    bool restoreIsKept() {
        const auto last = anyChunk(chance);
        plugin->selectProgram(anyProgram());
        pause();
        plugin->restore(last);
        return plugin->chunk() == last;
    }
    // During a load a choice only becomes the current one; made again after it, it is loaded.
    bool choiceIsKept() {
        for (int i = 0; i < 2; ++i) {
            plugin->selectProgram(1);
            quiet();
        }
        const auto saved = plugin->chunk();
        return pathOf(saved) == pathOf(slow) && saved.size() == slow.size();
    }
    // Often in the middle of a load.
    void destroyAndLoadAgain() {
        plugin->selectProgram(anyProgram());
        pause();
        window.reset();
        plugin = rig.loadActive();
    }
    void run(int steps, bool withWindow) {
        int done = 0, lost = 0, quietPoints = 0;
        while (done < steps && plugin && !HasFailure()) {
            const int count = chance.between(5, 20);
            makeSome(count, withWindow);
            done += count;
            ++quietPoints;
            lost += !(chance.oneIn(2) ? restoreIsKept() : choiceIsKept());
            if (chance.oneIn(3)) plugin->activate();
            if (chance.oneIn(4)) destroyAndLoadAgain();
        }
        std::printf("%d requests, %d quiet points, %d lost\n", done, quietPoints, lost);
        EXPECT_EQ(lost, 0);
        window.reset();
    }

    const Plugin keepsTheModule = rig.load();
    Chance chance{3};
    std::unique_ptr<HostWindow> window;
};

TEST_F(RandomRequests, OnSeveralThreadsLoseNothing) {
    run(stressSteps(300), false);
}

using RandomRequestsOnScreen = RandomRequests;
TEST_F(RandomRequestsOnScreen, WithAWindowThatComesAndGoesLoseNothing) {
    run(stressSteps(150), true);
}

} // namespace
} // namespace zarno::test

// SPDX-License-Identifier: GPL-3.0-or-later
// A share that has vanished: the system does not give a read back. This program's own pread stands before the
// library's for the module too, and keeps readers of one file as long as a test wants.
#ifndef _WIN32
#include "tests/host/HostRig.h"
#include "tests/support/WaveBuilder.h"

#include <atomic>
#include <chrono>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

std::atomic<bool> hangs{false};
std::atomic<int> hanging{0};

bool isHungFile(int file) {
    char name[512] = {};
    const auto link = "/proc/self/fd/" + std::to_string(file);
    return ::readlink(link.c_str(), name, sizeof name - 1) > 0 && std::string(name).ends_with("hung.wav");
}

} // namespace

extern "C" __attribute__((visibility("default"))) ssize_t pread(int file, void* to, size_t count, off_t at) {
    if (hangs && isHungFile(file)) {
        ++hanging;
        while (hangs)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        --hanging;
    }
    return ::syscall(SYS_pread64, file, to, count, at);
}

namespace zarno::test {
namespace {

using Clock = std::chrono::steady_clock;

bool isMapped(const std::string& module) {
    std::ifstream maps("/proc/self/maps");
    const std::string text{std::istreambuf_iterator<char>(maps), {}};
    return text.find(module) != std::string::npos;
}

int readerThreads() {
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm") >> std::ws, name);
        count += name == "ZSP Reader" ? 1 : 0;
    }
    return count;
}

template <typename Condition>
bool comesTrue(Condition condition) {
    const auto end = Clock::now() + std::chrono::seconds(20);
    while (!condition() && Clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

TEST(HungReads, TheInstanceClosesAndTheModuleStaysUntilTheyReturn) {
    HostRig rig;
    rig.addInstrument("a small.zse", levelInstrument("Small").bytes());
    InstrumentBuilder builder = levelInstrument("Hung");
    builder.storage = 0;
    builder.groups[0].zones = {zone("hung.wav")};
    rig.addInstrument("hung.wav", rampWave(1000));
    rig.addInstrument("b hung.zse", builder.bytes());
    for (int round = 1; round <= 3; ++round) {
        auto plugin = rig.load();
        ASSERT_TRUE(plugin);
        hangs = true;
        plugin->selectProgram(1);
        ASSERT_TRUE(comesTrue([&] { return hanging == round; }));
        const auto begin = Clock::now();
        plugin.reset();
        const std::chrono::duration<double> took = Clock::now() - begin;
        std::printf("closed with a hung read in %.2f s\n", took.count());
        EXPECT_LT(took.count(), 10.0) << "a hang, even on a machine under load";
        EXPECT_EQ(readerThreads(), round);
        ASSERT_TRUE(isMapped(rig.modulePath()));
    }
    hangs = false;
    EXPECT_TRUE(comesTrue([] { return readerThreads() == 0; }));
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    EXPECT_EQ(firstSound(render(*plugin, 512, {{5, noteOn(60)}}).left), 5);
}

} // namespace
} // namespace zarno::test
#endif

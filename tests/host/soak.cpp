// SPDX-License-Identifier: GPL-3.0-or-later
// A long time of random playing. ZARNO_SOAK_SECONDS says how long, in seconds of music.
#include "tools/vsthost/Soak.h"
#include "tests/host/BusyInstrument.h"

#include <cstdio>
#include <cstdlib>

namespace zarno::test {
namespace {

TEST(Soak, FourInstrumentsAtRandom) {
    HostRig rig;
    rig.addInstrument("a.zse", busyInstrument("Memory", {false, true, 0.3, 32}).bytes());
    rig.addInstrument("b.zse", busyInstrument("Streamed", {true, true, 0.0, 32}).bytes());
    rig.addInstrument("c.zse", busyInstrument("Memory, float", {false, false, 0.0, 128}).bytes());
    rig.addInstrument("d.zse", busyInstrument("Streamed, float", {true, false, 0.5, 64}).bytes());
    const auto plugin = rig.loadActive();
    ASSERT_TRUE(plugin);
    const char* wanted = std::getenv("ZARNO_SOAK_SECONDS");
    const SoakFigures figures = Soak(*plugin, 4, 1).run(wanted != nullptr ? std::atof(wanted) : 20.0);
    std::printf(
        "%.0f s of music in %.0f s; %llu events, %llu blocks, %d loads, at most %d voices, peak %.3f; "
        "not finite %llu, beyond full scale %llu, denormal %llu, voices left %d, memory %.1f MB -> %.1f MB\n",
        figures.playedSeconds, figures.takenSeconds, static_cast<unsigned long long>(figures.events),
        static_cast<unsigned long long>(figures.blocks), figures.loads, figures.mostVoices,
        static_cast<double>(figures.peak), static_cast<unsigned long long>(figures.notFinite),
        static_cast<unsigned long long>(figures.beyondFullScale),
        static_cast<unsigned long long>(figures.denormal), figures.voicesLeft, figures.residentMb.front(),
        figures.residentMb.back());
    EXPECT_TRUE(figures.isSound()) << "memory grew by " << figures.growthMb << " MB";
    EXPECT_GT(figures.mostVoices, 32) << "more than the first two have";
    EXPECT_GT(figures.peak, 0.1f);
}

} // namespace
} // namespace zarno::test

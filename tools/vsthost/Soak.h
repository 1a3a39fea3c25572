// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/vsthost/HostedPlugin.h"
#include "tools/vsthost/RandomPlayer.h"

#include <cstdint>
#include <vector>

namespace zarno {

/// What a long time of random playing came to.
struct SoakFigures {
    double playedSeconds = 0.0, takenSeconds = 0.0;
    std::uint64_t blocks = 0, events = 0, samples = 0;
    int loads = 0, stretches = 0, mostVoices = 0;
    float peak = 0.0f;

    // Each a fault when above 0:
    std::uint64_t notFinite = 0, beyondFullScale = 0, denormal = 0;
    int voicesLeft = 0;    ///< the most that still played long after everything had been let go
    int failedLoads = 0;   ///< that did not end in time
    double growthMb = 0.0; ///< of this process's memory, from the first quarter's most to the last quarter's

    std::vector<double> residentMb; ///< at the end of every stretch

    /// Memory counts from what a heap may grow by without anything being lost.
    bool isSound() const;
};

/// Plays on an active plug-in at random, so many seconds of music as fast as it goes: in stretches, each on
/// the next instrument of its library, at changing rates and block sizes, some begun while the load still
/// runs, now and then after saving and restoring. After each stretch all keys and pedals are let go, and the
/// voices that play on are counted. Only for our own module: others say nothing of their voices.
class Soak {
  public:
    Soak(HostedPlugin& plugin, int programs, std::uint32_t seed)
        : plugin_(plugin)
        , programs_(programs)
        , player_(seed) {}

    SoakFigures run(double seconds);

  private:
    void beginStretch();
    void playStretch(double seconds);
    void letGo();
    void playBlock(int frames, int events);
    void process(int frames);
    void look(const std::vector<float>& channel, int frames);
    int voices();

    HostedPlugin& plugin_;
    const int programs_;
    RandomPlayer player_;
    SoakFigures figures_;
    std::vector<float> left_, right_;
};

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/Soak.h"

#include "shell/EntryOpcodes.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>

namespace zarno {
namespace {

constexpr int longestBlock = 2048;
constexpr double longestLoad = 60.0, longestFade = 30.0; // seconds
constexpr double mostGrowthMb = 8.0;

// What of this process lies in memory; 0 where the system does not tell in this way, and under sanitizers,
// which keep books of their own.
double residentMegabytes() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 0.0;
#endif
    std::ifstream file("/proc/self/statm");
    double all = 0.0, resident = 0.0;
    file >> all >> resident;
    return resident * 4096.0 / 1e6;
}

double growthOf(const std::vector<double>& resident) {
    const auto quarter = static_cast<std::ptrdiff_t>(resident.size() / 4);
    if (quarter == 0) return 0.0;
    return *std::max_element(resident.end() - quarter, resident.end()) -
           *std::max_element(resident.begin(), resident.begin() + quarter);
}

} // namespace

bool SoakFigures::isSound() const {
    return notFinite == 0 && beyondFullScale == 0 && denormal == 0 && voicesLeft == 0 && failedLoads == 0 &&
           growthMb <= mostGrowthMb;
}

SoakFigures Soak::run(double seconds) {
    const auto began = std::chrono::steady_clock::now();
    left_.resize(longestBlock);
    right_.resize(longestBlock);
    plugin_.seedRandom(1);
    while (figures_.playedSeconds < seconds) {
        beginStretch();
        playStretch(std::min(seconds / 8.0, 3.0 + player_.below(12)));
        letGo();
        figures_.residentMb.push_back(residentMegabytes());
    }
    figures_.growthMb = growthOf(figures_.residentMb);
    figures_.takenSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    return figures_;
}

void Soak::beginStretch() {
    constexpr double rates[] = {44100.0, 48000.0, 44100.0, 96000.0};
    ++figures_.stretches;
    if (player_.below(4) == 0) plugin_.activate(rates[player_.below(4)], longestBlock);
    if (player_.below(6) == 0) {
        plugin_.restore(plugin_.chunk());
        ++figures_.loads;
    }
    plugin_.selectProgram(figures_.stretches % programs_);
    ++figures_.loads;
    if (player_.below(2) == 0) // the host does not know of the load, and plays on
        for (int i = 0; i < 50; ++i)
            playBlock(512, 4);
    if (!plugin_.waitForLoading(longestLoad)) ++figures_.failedLoads;
}

void Soak::playStretch(double seconds) {
    const double end = figures_.playedSeconds + seconds;
    while (figures_.playedSeconds < end) {
        const int frames = 1 + player_.below(player_.below(4) == 0 ? longestBlock : 256);
        playBlock(frames, player_.below(2 + frames / 200));
        figures_.mostVoices = std::max(figures_.mostVoices, voices());
    }
}

void Soak::letGo() {
    for (int part = 0; part < RandomPlayer::endings; ++part)
        plugin_.call(Vst2::effProcessEvents, 0, 0, &player_.end(part));
    const double end = figures_.playedSeconds + longestFade;
    do
        process(longestBlock);
    while (voices() > 0 && figures_.playedSeconds < end);
    figures_.voicesLeft = std::max(figures_.voicesLeft, voices());
}

void Soak::playBlock(int frames, int events) {
    plugin_.call(Vst2::effProcessEvents, 0, 0, &player_.play(frames, events));
    figures_.events += static_cast<std::uint64_t>(events);
    process(frames);
}

void Soak::process(int frames) {
    plugin_.process(left_.data(), right_.data(), frames);
    ++figures_.blocks;
    figures_.samples += static_cast<std::uint64_t>(frames);
    figures_.playedSeconds += frames / plugin_.options().sampleRate;
    look(left_, frames);
    look(right_, frames);
}

void Soak::look(const std::vector<float>& channel, int frames) {
    for (int i = 0; i < frames; ++i) {
        const float value = channel[static_cast<std::size_t>(i)];
        figures_.notFinite += std::isfinite(value) ? 0 : 1;
        figures_.beyondFullScale += std::abs(value) > 1.0f ? 1 : 0;
        figures_.denormal += std::fpclassify(value) == FP_SUBNORMAL ? 1 : 0;
        figures_.peak = std::max(figures_.peak, std::abs(value));
    }
}

int Soak::voices() {
    return static_cast<int>(
        plugin_.call(Vst2::effVendorSpecific, entryOpcode::magic, entryOpcode::playingVoices));
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/vsthost/Abi.h"

#include <array>
#include <cstdint>
#include <random>

namespace zarno {

/// Somebody who plays everything an instrument listens to, at random: notes over the whole keyboard, bends,
/// pedals and all other controllers, aftertouch, programs, changes of the play mode, on three channels. The
/// same seed plays the same.
class RandomPlayer {
  public:
    static constexpr int mostEvents = 64;

    explicit RandomPlayer(std::uint32_t seed)
        : generator_(seed) {}

    /// So many events for a block of so many frames, now and then with an offset behind its end or out of
    /// order. Valid until the next call. Takes no memory.
    Vst2::VstEvents& play(int frames, int events);

    /// Note-offs for all keys on all channels, then controllers 64 and 123: what ends a piece, in as many
    /// calls.
    static constexpr int endings = 7;
    Vst2::VstEvents& end(int part);

    int below(int count) { return static_cast<int>(generator_() % static_cast<std::uint32_t>(count)); }

  private:
    void add(int offset, int status, int data1, int data2);
    void addAny(int frames);
    int anyController();
    Vst2::VstEvents& asInterface();

    struct List { // as the interface has it, with room for all
        std::int32_t count;
        Vst2::VstIntPtr reserved;
        std::array<Vst2::VstMidiEvent*, mostEvents> events;
    };

    std::mt19937 generator_;
    std::array<Vst2::VstMidiEvent, mostEvents> events_{};
    List list_{};
};

} // namespace zarno

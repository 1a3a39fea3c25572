// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/vsthost/Abi.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
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
    RandomPlayer(const RandomPlayer&) = delete;
    RandomPlayer& operator=(const RandomPlayer&) = delete;

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

    // The interface declares room for two events and means as many as there are.
    static constexpr std::size_t listBytes =
        offsetof(Vst2::VstEvents, events) + mostEvents * sizeof(Vst2::VstEvent*);

    std::mt19937 generator_;
    std::array<Vst2::VstMidiEvent, mostEvents> events_{};
    alignas(Vst2::VstEvents) std::array<std::byte, listBytes> memory_{};
    Vst2::VstEvents& list_ = *new (memory_.data()) Vst2::VstEvents{};
};

} // namespace zarno

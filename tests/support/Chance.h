// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>
#include <random>

namespace zarno {

// Repeatable random choices for tests, the same with every standard library.
class Chance {
  public:
    explicit Chance(std::uint32_t seed)
        : generator_(seed) {}

    std::uint32_t bits() { return static_cast<std::uint32_t>(generator_()); }
    int below(int count) { return static_cast<int>(bits() % static_cast<std::uint32_t>(count)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool oneIn(int count) { return below(count) == 0; }
    float real(float low, float high) {
        return low + (high - low) * static_cast<float>(bits() >> 8) / 16777216.0f;
    }
    template <typename T>
    T of(std::initializer_list<T> choices) {
        return choices.begin()[below(static_cast<int>(choices.size()))];
    }

  private:
    std::mt19937 generator_;
};

} // namespace zarno

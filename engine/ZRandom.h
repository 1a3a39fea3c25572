// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <random>

namespace zarno {

// The engine's one source of chance. A generator of our own, since the C library's is seeded per thread on
// one system and takes a lock on the other. Not thread-safe: audio thread.
class ZRandom {
  public:
    explicit ZRandom(std::uint32_t seed)
        : generator_(seed) {}

    void seed(std::uint32_t value) { generator_.seed(value); }

    // 0 .. count-1, count > 0. The plain remainder: the same numbers with every standard library.
    int below(int count) { return static_cast<int>(generator_() % static_cast<std::uint32_t>(count)); }

  private:
    std::minstd_rand generator_;
};

} // namespace zarno

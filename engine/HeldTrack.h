// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

namespace zarno {

// One value a frame, which stands still most of the time: a value that is held on is written once.
template <int frames>
class HeldTrack {
  public:
    // Every frame has this value.
    void hold(float value) {
        const auto bits = std::bit_cast<std::uint32_t>(value); // 0 and -0 sound alike, but are not the same bits
        if (isHeld_ && bits == held_) return;
        std::fill_n(values_, frames, value);
        held_ = bits;
        isHeld_ = true;
    }
    // To be written frame by frame.
    float* move() {
        isHeld_ = false;
        return values_;
    }

    const float* data() const { return values_; }
    float operator[](int frame) const { return values_[frame]; }

  private:
    alignas(32) float values_[frames];
    std::uint32_t held_ = 0;
    bool isHeld_ = false;
};

} // namespace zarno

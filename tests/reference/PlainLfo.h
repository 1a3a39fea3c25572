// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace zarno {

// 256 steps and one guard entry, read by a 32-bit phase that never restarts.
class PlainLfo {
  public:
    PlainLfo() {
        buildTable(0);
        setRate(3.0f, 44100.0);
    }

    void setRate(float hertz, double sampleRate) {
        const double steps = hertz * 256.0 / sampleRate * 16777216.0;
        increment_ = static_cast<std::uint32_t>(std::clamp(steps, 0.0, 4294967295.0));
    }

    float step() {
        const std::uint32_t i = phase_ >> 24;
        const float f = static_cast<float>(phase_ & 0xFFFFFFu) * 5.9604645e-8f;
        phase_ += increment_;
        return (1 - f) * table_[i] + f * table_[i + 1];
    }

    void buildTable(int shape) {
        for (int i = 0; i <= 256; ++i)
            if (0 <= shape && shape <= 4) table_[static_cast<std::size_t>(i)] = entry(shape, i);
    }

  private:
    static float entry(int shape, int i) {
        const auto rise = [](int x) { return (std::exp(x / 128.0) - 1) / (std::exp(1.0) - 1) * 2 - 1; };
        double value = 0;
        switch (shape) {
        case 0:
            value = i < 64 ? i / 64.0 : i < 192 ? (128 - i) / 64.0 : i < 256 ? (i - 256) / 64.0 : 0.0;
            break;
        case 1:
            value = std::sin(2 * std::numbers::pi * i / 256);
            break;
        case 2:
            value = i < 256 ? i / 255.0 * 2 - 1 : -1.0;
            break;
        case 3:
            value = i < 128 || i == 256 ? 1.0 : -1.0;
            break;
        case 4:
            value = i < 128 ? rise(i) : i < 256 ? rise(256 - i) : -1.0;
            break;
        }
        return static_cast<float>(value);
    }

    std::array<float, 257> table_{};
    std::uint32_t phase_ = 0, increment_ = 0;
};

} // namespace zarno

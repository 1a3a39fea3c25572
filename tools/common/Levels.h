// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zarno {

/// Peak and root mean square of everything it was shown.
class Levels {
  public:
    void add(const float* samples, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const double value = samples[i];
            peak_ = std::max(peak_, std::abs(value));
            squares_ += value * value;
        }
        count_ += count;
    }

    double peak() const { return peak_; }
    double rms() const { return count_ == 0 ? 0.0 : std::sqrt(squares_ / static_cast<double>(count_)); }

  private:
    double peak_ = 0.0;
    double squares_ = 0.0;
    std::size_t count_ = 0;
};

inline double toDecibels(double gain) {
    return 20.0 * std::log10(std::max(gain, 1e-10));
}

} // namespace zarno

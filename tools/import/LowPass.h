// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zarno {

/// A resonant low-pass filter of two poles, gain 1 at 0 Hz. It follows the analogue curve up to half the
/// sample rate (poles by impulse invariance, zeros for the same magnitude at 0 Hz and at half the sample
/// rate), so what it sounds like does not depend on the rate of a recording. After M. Vicanek, "Matched
/// Second Order Digital Filters", 2016.
class LowPass {
  public:
    /// `cutoff`: as a share of the sample rate. From half of it on there is nothing left to filter.
    void set(double cutoff, double q) {
        const double f = std::clamp(2.0 * cutoff, 1e-5, 0.99);
        const double w = std::numbers::pi * f, damping = 0.5 / q;
        const double radius = std::exp(-damping * w);
        a1_ = -2.0 * radius *
              (damping <= 1.0 ? std::cos(std::sqrt(1.0 - damping * damping) * w)
                              : std::cosh(std::sqrt(damping * damping - 1.0) * w));
        a2_ = radius * radius;
        const double atZero = 1.0 + a1_ + a2_;
        const double bend = (1.0 - f * f) * (1.0 - f * f) + f * f / (q * q);
        const double atHalf = (1.0 - a1_ + a2_) * f * f / std::sqrt(bend);
        b0_ = 0.5 * (atZero + atHalf);
        b1_ = atZero - b0_;
    }

    double operator()(double in) {
        const double out = b0_ * in + b1_ * in1_ - a1_ * out1_ - a2_ * out2_;
        in1_ = in;
        out2_ = out1_;
        out1_ = out;
        return out;
    }

  private:
    double b0_ = 1.0, b1_ = 0.0, a1_ = 0.0, a2_ = 0.0;
    double in1_ = 0.0, out1_ = 0.0, out2_ = 0.0;
};

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/Shaping.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zarno {

/// A band as a filter of two poles. After R. Bristow-Johnson, "Cookbook formulae for audio equalizer biquad
/// filter coefficients".
class Biquad {
  public:
    Biquad(const ImportedBand& band, double rate) { design(band, rate); }

    double operator()(double in) {
        const double out = b0_ * in + b1_ * in1_ + b2_ * in2_ - a1_ * out1_ - a2_ * out2_;
        in2_ = in1_, in1_ = in;
        out2_ = out1_, out1_ = out;
        return out;
    }

  private:
    void design(const ImportedBand& band, double rate) {
        using Kind = ImportedBand::Kind;
        const double w = 2.0 * std::numbers::pi * std::clamp(band.frequency / rate, 1e-5, 0.49);
        const double c = std::cos(w), alpha = std::sin(w) / (2.0 * band.q);
        const double a = std::pow(10.0, band.gain / 40.0); // the square root of the gain
        const double over = std::pow(10.0, band.gain / 20.0);
        const double t = std::tan(0.5 * w), slope = 2.0 * std::sqrt(a) * alpha;
        switch (band.kind) {
        case Kind::LowPass:
            return set(over * (1 - c) / 2, over * (1 - c), over * (1 - c) / 2, 1 + alpha, -2 * c, 1 - alpha);
        case Kind::HighPass:
            return set(over * (1 + c) / 2, -over * (1 + c), over * (1 + c) / 2, 1 + alpha, -2 * c, 1 - alpha);
        case Kind::BandPass:
            return set(over * alpha, 0, -over * alpha, 1 + alpha, -2 * c, 1 - alpha);
        case Kind::Notch:
            return set(over, -2 * c * over, over, 1 + alpha, -2 * c, 1 - alpha);
        case Kind::Peak:
            return set(1 + alpha * a, -2 * c, 1 - alpha * a, 1 + alpha / a, -2 * c, 1 - alpha / a);
        case Kind::LowShelf:
            return set(a * (a + 1 - (a - 1) * c + slope), 2 * a * (a - 1 - (a + 1) * c),
                       a * (a + 1 - (a - 1) * c - slope), a + 1 + (a - 1) * c + slope,
                       -2 * (a - 1 + (a + 1) * c), a + 1 + (a - 1) * c - slope);
        case Kind::HighShelf:
            return set(a * (a + 1 + (a - 1) * c + slope), -2 * a * (a - 1 + (a + 1) * c),
                       a * (a + 1 + (a - 1) * c - slope), a + 1 - (a - 1) * c + slope,
                       2 * (a - 1 - (a + 1) * c), a + 1 - (a - 1) * c - slope);
        case Kind::LowPass1:
            return set(over * t, over * t, 0, 1 + t, t - 1, 0);
        case Kind::HighPass1:
            return set(over, -over, 0, 1 + t, t - 1, 0);
        case Kind::None:
            return set(1, 0, 0, 1, 0, 0);
        }
    }
    void set(double b0, double b1, double b2, double a0, double a1, double a2) {
        b0_ = b0 / a0, b1_ = b1 / a0, b2_ = b2 / a0, a1_ = a1 / a0, a2_ = a2 / a0;
    }

    double b0_ = 1, b1_ = 0, b2_ = 0, a1_ = 0, a2_ = 0;
    double in1_ = 0, in2_ = 0, out1_ = 0, out2_ = 0;
};

} // namespace zarno

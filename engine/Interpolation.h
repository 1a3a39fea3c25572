// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace zarno {

// Four-point interpolation between y0 and y1 at t in 0..1, with ym1 before and y2 behind. T is float, or a
// vector of floats with one lane a frame: one text serves both, so that both give the same bits.
// Mid is the cubic Hermite, High the 4-point, 3rd-order polynomial for 2x oversampled input from
// O. Niemitalo, "Polynomial Interpolators for High-Quality Resampling of Oversampled Audio", 2001.
// High does not pass through y0 at t = 0, so whole frames are read without it.

template <typename T>
inline T interpolateLow(T t, T y0, T y1) {
    return y0 + (y1 - y0) * t;
}

template <typename T>
inline T interpolateMid(T t, T ym1, T y0, T y1, T y2) {
    const T cubic = ((y0 - y1) * 3.0f - ym1 + y2) * 0.5f;
    const T square = cubic * t + y1 * 2.0f + ym1 - (y0 * 5.0f + y2) * 0.5f;
    return (square * t + (y1 - ym1) * 0.5f) * t + y0;
}

template <typename T>
inline T interpolateHigh(T t, T ym1, T y0, T y1, T y2) {
    const T z = t - 0.5f;
    const T even1 = ym1 + y2, odd1 = y2 - ym1;
    const T even2 = y0 + y1, odd2 = y1 - y0;
    const T c0 = even1 * 0.04131402f + even2 * 0.45868972f;
    const T c1 = odd1 * 0.17577925f + odd2 * 0.48068026f;
    const T c2 = even1 * 0.24614027f - even2 * 0.246185f;
    const T c3 = odd1 * 0.10174986f - odd2 * 0.36030924f;
    return ((c3 * z + c2) * z + c1) * z + c0;
}

// A quality that does not exist gives silence between frames, on purpose.
inline float interpolate4(float t, float ym1, float y0, float y1, float y2, std::int32_t quality) {
    switch (quality) { // the values of Quality
    case 0:
        return interpolateLow(t, y0, y1);
    case 1:
        return interpolateMid(t, ym1, y0, y1, y2);
    case 2:
        return interpolateHigh(t, ym1, y0, y1, y2);
    default:
        return 0.0f;
    }
}

// Sample memory holds 16-bit integers or floats of full scale 1.
inline constexpr float sixteenBitScale = 1.0f / 32768.0f;

} // namespace zarno

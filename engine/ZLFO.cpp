// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ZLFO.h"

#include "engine/Records.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zarno {
namespace {

constexpr int steps = ZLFO::steps;

float triangle(int i) {
    const int quarter = i / 64, within = i % 64;
    const int value[] = {within, 64 - within, -within, within - 64};
    return i == steps ? 0.0f : static_cast<float>(value[quarter]) / 64.0f;
}

float sine(int i) {
    return static_cast<float>(std::sin(2.0 * std::numbers::pi * i / steps));
}

float saw(int i) {
    return i == steps ? -1.0f : static_cast<float>(i / 255.0 * 2.0 - 1.0);
}

float square(int i) {
    return i < 128 || i == steps ? 1.0f : -1.0f;
}

float exponent(int i) {
    const int x = i < 128 ? i : steps - i; // up, then down the same curve; the guard comes out as -1
    return static_cast<float>((std::exp(x / 128.0) - 1.0) / (std::numbers::e - 1.0) * 2.0 - 1.0);
}

} // namespace

ZLFO::ZLFO() {
    setShape(0);
    setRate(3.0f, 44100.0);
}

void ZLFO::setShape(std::int32_t shape) {
    static constexpr float (*shapes[])(int) = {triangle, sine, saw, square, exponent};
    if (shape == shape_ || shape < 0 || shape >= static_cast<std::int32_t>(std::size(shapes))) return;
    shape_ = shape;
    for (int i = 0; i <= steps; ++i)
        table_[static_cast<std::size_t>(i)] = shapes[shape](i);
}

void ZLFO::setRate(float rate, double sampleRate) {
    const double increment = static_cast<double>(rate) * steps / sampleRate * 16777216.0;
    increment_ = static_cast<std::uint32_t>(std::clamp(increment, 0.0, 4294967295.0));
}

} // namespace zarno

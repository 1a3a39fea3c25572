// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace zarno {

// One low-frequency oscillator: 256 table steps and a guard, read with linear interpolation by a 32-bit phase
// that runs freely from construction. Audio thread.
class ZLFO {
  public:
    static constexpr int steps = 256;

    ZLFO();
    virtual ~ZLFO() = default;

    // Builds the table of a shape (LfoShape); an unknown shape keeps the table. The phase goes on.
    void setShape(std::int32_t shape);

    // rate in Hz, sampleRate in Hz. Negative rates stand still.
    void setRate(float rate, double sampleRate);

    // As many steps at once: the value of the last.
    float skipTo(int count) {
        phase_ += increment_ * static_cast<std::uint32_t>(count - 1);
        return step();
    }

    float step() {
        const std::uint32_t index = phase_ >> 24;
        const float f = static_cast<float>(phase_ & 0xFFFFFFu) * 5.9604645e-8f; // 2^-24
        const float value = (1.0f - f) * table_[index] + f * table_[index + 1];
        phase_ += increment_;
        return value;
    }

  private:
    std::uint32_t phase_ = 0;
    std::uint32_t increment_ = 0;
    std::int32_t shape_ = -1;
    std::array<float, steps + 1> table_{};
};

} // namespace zarno

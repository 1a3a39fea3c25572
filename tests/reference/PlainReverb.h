// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <vector>

namespace zarno {

// Freeverb (Jezar at Dreampoint, public domain): eight parallel combs and four allpasses in series a channel.
class PlainReverb {
  public:
    PlainReverb() { setSampleRate(44100.0); }

    void setSampleRate(double sampleRate) {
        for (int side = 0; side < 2; ++side) {
            for (int i = 0; i < 8; ++i)
                combs_[side][i] = Comb(length(combLengths[i], side, sampleRate));
            for (int i = 0; i < 4; ++i)
                allpasses_[side][i] = Allpass(length(allpassLengths[i], side, sampleRate));
        }
    }

    // The wet pair alone. A state that is no longer finite is cleared.
    void process(float inLeft, float inRight, float& left, float& right) {
        const float input = (inLeft + inRight) * 0.015f;
        float wet[2] = {0, 0};
        for (int side = 0; side < 2; ++side) {
            for (Comb& comb : combs_[side])
                wet[side] += comb.process(input);
            for (Allpass& allpass : allpasses_[side])
                wet[side] = allpass.process(wet[side]);
        }
        if (!std::isfinite(wet[0]) || !std::isfinite(wet[1])) {
            clear();
            wet[0] = wet[1] = 0;
        }
        const auto wet1 = static_cast<float>(1.5 * (0.7 / 2 + 0.5));
        const auto wet2 = static_cast<float>(1.5 * (1 - 0.7) / 2);
        left = wet[0] * wet1 + wet[1] * wet2;
        right = wet[1] * wet1 + wet[0] * wet2;
    }

    void clear() {
        for (auto& side : combs_)
            for (Comb& comb : side)
                comb = Comb(comb.buffer.size());
        for (auto& side : allpasses_)
            for (Allpass& allpass : side)
                allpass = Allpass(allpass.buffer.size());
    }

  private:
    struct Delay {
        explicit Delay(std::size_t frames = 1)
            : buffer(frames, 0.0f) {}
        float read() const { return std::fpclassify(buffer[at]) == FP_SUBNORMAL ? 0.0f : buffer[at]; }
        void write(float value) {
            buffer[at] = value;
            at = (at + 1) % buffer.size();
        }
        std::vector<float> buffer;
        std::size_t at = 0;
    };

    struct Comb : Delay {
        using Delay::Delay;
        float process(float input) {
            const float output = read();
            store = 0.4f * store + 0.6f * output;
            write(input + store * 0.868f);
            return output;
        }
        float store = 0;
    };

    struct Allpass : Delay {
        using Delay::Delay;
        float process(float input) {
            const float delayed = read();
            write(input + delayed * 0.5f);
            return delayed - input;
        }
    };

    static std::size_t length(int left, int side, double sampleRate) {
        const int at44100 = left + (side == 1 ? 23 : 0);
        return static_cast<std::size_t>(std::lround(at44100 * sampleRate / 44100.0));
    }

    static constexpr int combLengths[8] = {1116, 1188, 1277, 1356, 1422, 1491, 1557, 1617};
    static constexpr int allpassLengths[4] = {556, 441, 341, 225};

    Comb combs_[2][8];
    Allpass allpasses_[2][4];
};

} // namespace zarno

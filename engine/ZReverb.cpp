// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ZReverb.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace zarno {
namespace {

constexpr int combLengths[8] = {1116, 1188, 1277, 1356, 1422, 1491, 1557, 1617}; // samples at 44100 Hz, left
constexpr int allpassLengths[4] = {556, 441, 341, 225};
constexpr int stereoSpread = 23; // the right channel's delays are longer by this

constexpr float inputGain = 0.015f;
constexpr float roomSize = 0.868f;
constexpr float damping = 0.4f;
constexpr double wet = 1.5;
constexpr double width = 0.7;
constexpr auto wet1 = static_cast<float>(wet * (width / 2.0 + 0.5));
constexpr auto wet2 = static_cast<float>(wet * (1.0 - width) / 2.0);

constexpr int partFrames = 64;
constexpr float wildInput = 1e30f; // below it, eight combs of gain 1/(1 - roomSize) cannot overflow

float undenormalised(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return (bits & 0x7F800000u) == 0 ? 0.0f : value;
}

int scaled(int length, double sampleRate) {
    return std::max(1, static_cast<int>(std::lround(length * sampleRate / 44100.0)));
}

} // namespace

ZReverb::ZReverb() {
    setSampleRate(44100.0);
}

void ZReverb::setSampleRate(double sampleRate) {
    if (sampleRate == sampleRate_) return;
    sampleRate_ = sampleRate;
    for (int channel = 0; channel < 2; ++channel) {
        const int spread = channel * stereoSpread;
        auto& [combs, allpasses] = channels_[static_cast<std::size_t>(channel)];
        for (std::size_t i = 0; i < combs.size(); ++i)
            combs[i].resize(scaled(combLengths[i] + spread, sampleRate));
        for (std::size_t i = 0; i < allpasses.size(); ++i)
            allpasses[i].resize(scaled(allpassLengths[i] + spread, sampleRate));
    }
    wild_ = false;
}

void ZReverb::clear() {
    for (Channel& channel : channels_) {
        for (Comb& comb : channel.combs)
            comb.clear();
        for (Allpass& allpass : channel.allpasses)
            allpass.clear();
    }
    wild_ = false;
}

void ZReverb::process(float* left, float* right, int count, float send) {
    for (int at = 0; at < count; at += partFrames)
        processPart(left + at, right + at, std::min(partFrames, count - at), send);
}

void ZReverb::processPart(float* left, float* right, int count, float send) {
    float input[partFrames], wetLeft[partFrames], wetRight[partFrames];
    for (int i = 0; i < count; ++i) {
        input[i] = (left[i] + right[i]) * inputGain;
        wild_ |= !(std::fabs(input[i]) < wildInput);
    }
    // With an ordinary input whole parts go through filter by filter; else sample by sample, since the
    // sample at which the state overflows must be found.
    const int stride = wild_ ? 1 : count;
    for (int at = 0; at < count; at += stride) {
        channels_[0].wet(input + at, wetLeft + at, stride);
        channels_[1].wet(input + at, wetRight + at, stride);
        if (wild_ && !(std::isfinite(wetLeft[at]) && std::isfinite(wetRight[at]))) {
            clear();
            wild_ = true;
            wetLeft[at] = wetRight[at] = 0.0f;
        }
    }
    for (int i = 0; i < count; ++i) {
        left[i] += (wetLeft[i] * wet1 + wetRight[i] * wet2) * send;
        right[i] += (wetRight[i] * wet1 + wetLeft[i] * wet2) * send;
    }
}

void ZReverb::Channel::wet(const float* input, float* output, int count) {
    std::fill_n(output, count, 0.0f);
    for (Comb& comb : combs)
        comb.add(input, output, count);
    for (Allpass& allpass : allpasses)
        allpass.run(output, count);
}

void ZReverb::Comb::resize(int length) {
    buffer_.resize(static_cast<std::size_t>(length));
    clear();
}

void ZReverb::Comb::clear() {
    std::fill(buffer_.begin(), buffer_.end(), 0.0f);
    index_ = 0;
    store_ = 0.0f;
}

void ZReverb::Comb::add(const float* input, float* sum, int count) {
    for (int i = 0; i < count; ++i) {
        const float output = undenormalised(buffer_[index_]);
        store_ = undenormalised(damping * store_ + (1.0f - damping) * output);
        buffer_[index_] = input[i] + store_ * roomSize;
        if (++index_ == buffer_.size()) index_ = 0;
        sum[i] += output;
    }
}

void ZReverb::Allpass::resize(int length) {
    buffer_.resize(static_cast<std::size_t>(length));
    clear();
}

void ZReverb::Allpass::clear() {
    std::fill(buffer_.begin(), buffer_.end(), 0.0f);
    index_ = 0;
}

void ZReverb::Allpass::run(float* inOut, int count) {
    constexpr float feedback = 0.5f;
    for (int i = 0; i < count; ++i) {
        const float delayed = undenormalised(buffer_[index_]);
        buffer_[index_] = inOut[i] + delayed * feedback;
        if (++index_ == buffer_.size()) index_ = 0;
        inOut[i] = delayed - inOut[i];
    }
}

} // namespace zarno

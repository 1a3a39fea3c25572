// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AudioGate.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace zarno {

// Each side writes its own flag and then reads the other's. Sequentially consistent, so at least one of them sees
// the other.
bool AudioGate::enter() {
    inside_.fetch_add(1);
    if (!closed_.load()) return true;
    leave();
    return false;
}

void AudioGate::close() {
    closed_.store(true);
    while (inside_.load() != 0)
        std::this_thread::sleep_for(std::chrono::microseconds(200));
}

void AudioGate::reserve(int blockSize) {
    const auto wanted = 2 * static_cast<std::size_t>(std::clamp(blockSize, 0, 1 << 20));
    if (aside_.size() < wanted) aside_.resize(wanted);
}

void AudioGate::process(float** outputs, int frames) {
    if (frames <= 0) return;
    float* left = outputs != nullptr ? outputs[0] : nullptr;
    float* right = outputs != nullptr ? outputs[1] : nullptr;
    if (!enter()) {
        for (float* channel : {left, right})
            if (channel != nullptr) std::fill_n(channel, frames, 0.0f);
        return;
    }
    if (left != nullptr && right != nullptr && left != right)
        wrapperProcess_(&effect_, nullptr, outputs, frames);
    else
        processAside(left, right, frames);
    leave();
}

void AudioGate::processAside(float* left, float* right, int frames) {
    const auto count = static_cast<std::size_t>(frames);
    if (aside_.size() < 2 * count) aside_.resize(2 * count); // more than was announced, or nothing was
    float* channels[] = {aside_.data(), aside_.data() + count};
    wrapperProcess_(&effect_, nullptr, channels, frames);
    if (left != nullptr) std::copy_n(channels[0], count, left);
    if (right != nullptr) std::copy_n(channels[1], count, right);
}

} // namespace zarno

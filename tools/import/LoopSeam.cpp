// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/LoopSeam.h"

#include <algorithm>
#include <vector>

namespace zarno {

std::uint64_t flattestSeam(const ImportedSample& sample, std::uint64_t loopStart, std::uint64_t loopEnd) {
    constexpr std::uint64_t mostFrames = 8192, piece = 4096;
    const auto channels = static_cast<std::size_t>(std::max(sample.format.channels, 1));
    const auto frames = static_cast<std::size_t>(std::min(loopEnd - loopStart, mostFrames));
    const auto reader = sample.open();
    std::vector<float> loop(std::max<std::size_t>(piece, frames) * channels);
    for (std::uint64_t done = 0; done < loopStart;) {
        const std::uint64_t got = reader->read(loop.data(), std::min(piece, loopStart - done));
        if (got == 0) return 0;
        done += got;
    }
    const auto got = static_cast<std::size_t>(reader->read(loop.data(), frames));

    const auto step = [&](std::size_t frame) {
        double sum = 0.0;
        for (std::size_t c = 0; c < channels; ++c) {
            const double d = loop[(frame + 1) * channels + c] - loop[frame * channels + c];
            sum += d * d;
        }
        return sum;
    };
    constexpr std::size_t reach = 2; // what interpolation reads on either side
    std::size_t best = 0;
    double least = 1e30;
    for (std::size_t frame = reach; frame + reach < got; ++frame) {
        double slope = 0.0;
        for (std::size_t near = frame - reach; near < frame + reach; ++near)
            slope += step(near);
        if (slope < least) least = slope, best = frame;
    }
    return best;
}

} // namespace zarno

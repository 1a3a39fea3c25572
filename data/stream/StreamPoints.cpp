// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/StreamPoints.h"

#include "data/Limits.h"

#include <algorithm>

namespace zarno {
namespace {

// Records may name any frame; sums of what is kept here do not overflow.
constexpr std::uint64_t furthestFrame = std::uint64_t{1} << 62;

} // namespace

std::int32_t chunkFramesInUse(const InstrumentSettings& settings) {
    std::int32_t chunk = std::clamp<std::int32_t>(settings.streamBufferFrames, 1, limits::chunkFrames);
    const auto voices = static_cast<std::uint64_t>(std::clamp<int>(settings.polyphony, 1, limits::voices));
    const std::uint64_t width = settings.sixteenBit != 0 ? 2 : 4;
    constexpr std::uint64_t buffers = 2, channels = 2;
    while (voices * buffers * channels * width * static_cast<std::uint64_t>(chunk) > limits::bufferBytes)
        chunk /= 2;
    return chunk;
}

StreamPoints::StreamPoints(const ZoneRecord& record, std::uint64_t lengthInFrames)
    : start(std::min(record.startFrame, furthestFrame))
    , end(std::min(record.endFrame, furthestFrame))
    , loopStart(std::min(record.loopStart, furthestFrame))
    , loopEnd(std::min(record.loopEnd, furthestFrame))
    , length(std::min(lengthInFrames, furthestFrame))
    , loops(zarno::loops(record) && loopStart < loopEnd) {}

std::uint64_t StreamPoints::available(std::uint64_t frame, std::uint64_t count) const {
    return frame < length ? std::min(count, length - frame) : 0;
}

// The loop counts one frame more here than in frameBehind, and the distance is taken in 32 bits: both on
// purpose, instruments were made to sound with it.
std::uint64_t StreamPoints::frameBehindPreload(std::uint64_t chunk) const {
    if (!wraps(start, chunk)) return start + chunk;
    const auto distance = static_cast<std::uint32_t>(chunk - loopEnd - 1 + start);
    const auto loopFrames = static_cast<std::uint32_t>(loopEnd - loopStart + 1);
    return loopStart + (loopFrames == 0 ? 0 : distance % loopFrames);
}

std::uint64_t StreamPoints::frameBehind(std::uint64_t frame, std::uint64_t chunk) const {
    if (!wraps(frame, chunk)) return frame + available(frame, chunk);
    const std::uint64_t untilLoopEnd = loopEnd > frame ? loopEnd - frame : 0;
    return loopStart + available(loopStart, (chunk - untilLoopEnd) % (loopEnd - loopStart));
}

} // namespace zarno

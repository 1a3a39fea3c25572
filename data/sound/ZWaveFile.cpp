// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sound/ZWaveFile.h"

#include "data/Bytes.h"
#include "data/Limits.h"
#include "data/sound/SampleConvert.h"

#include <algorithm>
#include <atomic>

namespace zarno {
namespace {

std::atomic<int> openFiles{0};

// Small enough for any thread's stack and for the second-level cache, large enough that the cost of a read
// call disappears. A multiple of all common frame sizes.
constexpr std::size_t chunkBytes = limits::waveFrameBytes;

} // namespace

int ZWaveFile::openCount() {
    return openFiles.load(std::memory_order_relaxed);
}

bool ZWaveFile::openHandle() {
    frame_ = 0;
    if (!file_.open(path_)) return false;
    openFiles.fetch_add(1, std::memory_order_relaxed);
    return true;
}

bool ZWaveFile::open(const std::string& path, std::shared_ptr<const File>, std::uint64_t) {
    close();
    path_ = path;
    headerKnown_ = false;
    if (!openHandle()) return false;
    Bytes bytes(file_);
    headerKnown_ = readWaveHeader(bytes, header_, formats_) && header_.bytesPerFrame <= chunkBytes;
    if (!headerKnown_) {
        close();
        header_ = WaveHeader();
    }
    return headerKnown_;
}

bool ZWaveFile::reopen() {
    if (isOpen()) return true;
    return headerKnown_ && openHandle();
}

void ZWaveFile::close() {
    if (!isOpen()) return;
    file_.close();
    openFiles.fetch_sub(1, std::memory_order_relaxed);
}

// Reads what fits into one chunk.
template <typename Out>
std::uint64_t ZWaveFile::readChunk(Out* destination, std::uint64_t frames) {
    std::uint8_t raw[chunkBytes];
    const std::size_t frameBytes = header_.bytesPerFrame;
    const auto packedBytes = static_cast<std::size_t>(header_.channels * header_.bytesPerSample);
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(frames, chunkBytes / frameBytes));
    const std::uint64_t offset = header_.dataOffset + frame_ * frameBytes;
    const std::size_t got = file_.readAt(offset, raw, wanted * frameBytes) / frameBytes;
    if (frameBytes != packedBytes)
        for (std::size_t i = 1; i < got; ++i)
            std::memmove(raw + i * packedBytes, raw + i * frameBytes, packedBytes);
    const std::size_t values = got * static_cast<std::size_t>(header_.channels);
    if (header_.floatSamples)
        convert::floats(raw, destination, values);
    else
        convert::packed(header_.bytesPerSample, header_.channels == 2, raw, destination, values);
    frame_ += got;
    return got;
}

// The frames lie in the file as they are wanted in memory.
bool ZWaveFile::isPlain16Bit() const {
    return header_.bytesPerSample == 2 &&
           header_.bytesPerFrame == static_cast<std::uint32_t>(2 * header_.channels);
}

template <typename Out>
std::uint64_t ZWaveFile::readFrames(Out* destination, std::uint64_t frames) {
    if (!isOpen() || frame_ >= header_.frames) return 0;
    frames = std::min(frames, header_.frames - frame_);
    std::uint64_t done = 0;
    while (done < frames) {
        const std::uint64_t got = readChunk(destination + done * header_.channels, frames - done);
        if (got == 0) break;
        done += got;
    }
    return done;
}

std::uint64_t ZWaveFile::readShort(std::int16_t* destination, std::uint64_t frames) {
    if (!isPlain16Bit()) return readFrames(destination, frames);
    if (!isOpen() || frame_ >= header_.frames) return 0;
    const std::uint64_t frameBytes = header_.bytesPerFrame;
    const auto bytes = static_cast<std::size_t>(std::min(frames, header_.frames - frame_) * frameBytes);
    const std::uint64_t got =
        file_.readAt(header_.dataOffset + frame_ * frameBytes, destination, bytes) / frameBytes;
    frame_ += got;
    return got;
}

std::uint64_t ZWaveFile::readFloat(float* destination, std::uint64_t frames) {
    return readFrames(destination, frames);
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sound/ZEmbeddedSoundFile.h"

#include "data/Limits.h"
#include "platform/File.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zarno {
namespace {

constexpr std::size_t chunkBytes = limits::blockFrameBytes;

} // namespace

bool ZEmbeddedSoundFile::open(const std::string& path, std::shared_ptr<const File> file,
                              std::uint64_t position) {
    name_ = path;
    file_ = std::move(file);
    position_ = position;
    frame_ = length_ = 0;
    open_ = false;
    if (!file_ || file_->readAt(position_, &header_, sizeof header_) != sizeof header_) return false;
    open_ = header_.bytesPerSample == 2 || header_.bytesPerSample == 4;
    if (open_) length_ = framesInFile();
    return open_;
}

std::uint64_t ZEmbeddedSoundFile::framesInFile() const {
    if (header_.channels < 1 || header_.frames < 1) return 0;
    const std::uint64_t frameBytes = std::uint64_t(header_.channels) * std::uint64_t(header_.bytesPerSample);
    if (frameBytes > chunkBytes) return 0; // thousands of channels: no sound
    const std::uint64_t available = file_->size() - std::min(file_->size(), position_ + sizeof header_);
    return std::min<std::uint64_t>(header_.frames, available / frameBytes);
}

std::uint64_t ZEmbeddedSoundFile::storedSize() const {
    return sizeof header_ + std::uint64_t(header_.frames) * std::uint64_t(header_.bytesPerSample);
}

template <typename Sample>
std::uint64_t ZEmbeddedSoundFile::readFirstTwoChannels(Sample* destination, std::uint64_t frames) {
    std::uint8_t raw[chunkBytes];
    const std::size_t frameBytes = header_.channels * sizeof(Sample);
    const std::uint64_t data = position_ + sizeof header_;
    std::uint64_t done = 0;
    while (done < frames) {
        const auto wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(frames - done, chunkBytes / frameBytes));
        const std::size_t got =
            file_->readAt(data + (frame_ + done) * frameBytes, raw, wanted * frameBytes) / frameBytes;
        for (std::size_t i = 0; i < got; ++i)
            std::memcpy(destination + (done + i) * 2, raw + i * frameBytes, 2 * sizeof(Sample));
        if (got == 0) break;
        done += got;
    }
    return done;
}

template <typename Sample>
std::uint64_t ZEmbeddedSoundFile::readFrames(Sample* destination, std::uint64_t frames) {
    if (!open_ || header_.bytesPerSample != sizeof(Sample) || frame_ >= length_) return 0;
    frames = std::min(frames, length_ - frame_);
    std::uint64_t done = 0;
    if (header_.channels > 2) {
        done = readFirstTwoChannels(destination, frames);
    } else {
        const std::size_t frameBytes = header_.channels * sizeof(Sample);
        const std::uint64_t offset = position_ + sizeof header_ + frame_ * frameBytes;
        done = file_->readAt(offset, destination, static_cast<std::size_t>(frames * frameBytes)) / frameBytes;
    }
    frame_ += done;
    return done;
}

std::uint64_t ZEmbeddedSoundFile::readShort(std::int16_t* destination, std::uint64_t frames) {
    return readFrames(destination, frames);
}

std::uint64_t ZEmbeddedSoundFile::readFloat(float* destination, std::uint64_t frames) {
    return readFrames(destination, frames);
}

} // namespace zarno

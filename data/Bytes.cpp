// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Bytes.h"

#include "platform/File.h"

#include <algorithm>

namespace zarno {

Bytes::Bytes(const File& file, std::size_t bufferBytes)
    : file_(&file)
    , buffer_(bufferBytes)
    , window_(buffer_.data())
    , size_(file.size()) {}

Bytes::Bytes(const void* data, std::size_t size)
    : window_(static_cast<const std::uint8_t*>(data))
    , windowBytes_(size)
    , size_(size) {}

// Makes the window begin at or before the position; returns the bytes of it from the position on.
std::size_t Bytes::fillWindow() {
    const bool inside = position_ >= windowStart_ && position_ - windowStart_ < windowBytes_;
    if (!inside) {
        if (!file_ || left() == 0) return 0;
        windowStart_ = position_;
        windowBytes_ = file_->readAt(position_, buffer_.data(), buffer_.size());
        readFailed_ = readFailed_ || windowBytes_ == 0;
    }
    return windowBytes_ - static_cast<std::size_t>(position_ - windowStart_);
}

std::size_t Bytes::readSome(void* destination, std::size_t count) {
    auto* out = static_cast<std::uint8_t*>(destination);
    std::size_t done = 0;
    while (done < count) {
        const std::size_t wanted = count - done;
        std::size_t got = 0;
        if (file_ && wanted >= buffer_.size()) { // large: straight to where it belongs
            got = file_->readAt(position_, out + done, wanted);
            readFailed_ = readFailed_ || (got == 0 && left() > 0);
        } else {
            got = std::min(fillWindow(), wanted);
            if (got > 0) std::memcpy(out + done, window_ + (position_ - windowStart_), got);
        }
        if (got == 0) break;
        done += got;
        position_ += got;
    }
    return done;
}

bool Bytes::read(void* destination, std::size_t count) {
    if (count > left()) return false;
    const std::uint64_t start = position_;
    if (readSome(destination, count) == count) return true;
    position_ = start;
    return false;
}

bool Bytes::readBlock(std::vector<std::uint8_t>& block, std::uint64_t count) {
    block.clear();
    if (count > left()) return false;
    block.resize(static_cast<std::size_t>(count));
    if (read(block.data(), block.size())) return true;
    block.clear();
    return false;
}

Bytes::StringEnd Bytes::readString(std::string& text, std::size_t limit) {
    text.clear();
    while (text.size() <= limit) {
        const std::size_t available = std::min(fillWindow(), limit + 1 - text.size());
        if (available == 0) return StringEnd::EndOfFile;
        const std::uint8_t* from = window_ + (position_ - windowStart_);
        const void* zero = std::memchr(from, 0, available);
        const std::size_t length =
            zero ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(zero) - from) : available;
        text.append(reinterpret_cast<const char*>(from), length);
        position_ += length + (zero ? 1 : 0);
        if (zero) return StringEnd::Zero;
    }
    return StringEnd::Limit;
}

} // namespace zarno

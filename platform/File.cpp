// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"

#include <utility>

namespace zarno {

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        close();
        swap(other);
    }
    return *this;
}

void File::swap(File& other) noexcept {
    std::swap(handle_, other.handle_);
    std::swap(size_, other.size_);
    std::swap(position_, other.position_);
}

std::size_t File::read(void* destination, std::size_t count) {
    const auto got = readAt(position_, destination, count);
    position_ += got;
    return got;
}

} // namespace zarno

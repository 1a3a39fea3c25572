// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"

#include "platform/PathOnDisk_posix.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

static_assert(sizeof(off_t) == 8, "files beyond 2 GiB need a 64-bit off_t");

namespace zarno {
namespace {

// O_NONBLOCK: opening a pipe without a writer would wait for ever. It means nothing to the reads of a regular
// file.
int openForReading(const std::string& path) {
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
}

} // namespace

bool File::open(std::string_view path) {
    close();
    if (path.empty() || path.find('\0') != std::string_view::npos) return false;
    const int descriptor = openForReading(pathOnDisk(path));
    if (descriptor < 0) return false;

    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(descriptor);
        return false;
    }
    handle_ = descriptor;
    size_ = static_cast<std::uint64_t>(status.st_size);
    position_ = 0;
    return true;
}

void File::close() noexcept {
    if (isOpen()) ::close(static_cast<int>(handle_));
    handle_ = closed;
    size_ = 0;
    position_ = 0;
}

std::size_t File::readAt(std::uint64_t offset, void* destination, std::size_t count) const {
    if (!isOpen()) return 0;
    constexpr auto lastOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
    std::size_t done = 0;
    while (done < count && offset + done >= offset && offset + done <= lastOffset) {
        const auto got = ::pread(static_cast<int>(handle_), static_cast<char*>(destination) + done,
                                 count - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void File::adviseRandom() const {
    if (isOpen()) ::posix_fadvise(static_cast<int>(handle_), 0, 0, POSIX_FADV_RANDOM);
}

void File::adviseNeeded(std::uint64_t offset, std::uint64_t count) const {
    // What begins behind the end is not there; a count of 0 would mean all the rest.
    if (!isOpen() || offset >= size_ || count == 0) return;
    const std::uint64_t bytes = std::min(count, size_ - offset);
    ::posix_fadvise(static_cast<int>(handle_), static_cast<off_t>(offset), static_cast<off_t>(bytes),
                    POSIX_FADV_WILLNEED);
}

} // namespace zarno

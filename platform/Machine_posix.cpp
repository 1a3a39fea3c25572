// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Machine.h"

#include "platform/PathOnDisk_posix.h"

#include <sys/stat.h>
#include <unistd.h>

namespace zarno {

std::string fileIdentity(std::string_view path) {
    struct stat status {};
    if (path.empty() || path.find('\0') != std::string_view::npos) return {};
    if (::stat(pathOnDisk(path).c_str(), &status) != 0) return {};
    return std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino);
}

std::uint64_t physicalMemory() {
    const long pages = ::sysconf(_SC_PHYS_PAGES), pageBytes = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageBytes > 0
               ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageBytes)
               : 0;
}

} // namespace zarno

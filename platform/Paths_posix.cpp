// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Paths.h"

#include "platform/PathOnDisk_posix.h"

#include <sys/stat.h>

namespace zarno {
namespace {

mode_t fileType(std::string_view path) {
    struct stat status {};
    if (path.empty() || path.find('\0') != std::string_view::npos) return 0;
    return ::stat(pathOnDisk(path).c_str(), &status) == 0 ? status.st_mode & S_IFMT : 0;
}

} // namespace

bool isRegularFile(std::string_view path) {
    return fileType(path) == S_IFREG;
}
bool isFolder(std::string_view path) {
    return fileType(path) == S_IFDIR;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Paths.h"

#include "platform/Utf8.h"

#include <sys/stat.h>

namespace zarno {
namespace {

mode_t fileType(std::string_view path) {
    struct stat status {};
    if (path.empty() || path.find('\0') != std::string_view::npos) return 0;
    if (::stat(std::string(path).c_str(), &status) == 0) return status.st_mode & S_IFMT;
    if (!isValidUtf8(path) && ::stat(utf8FromLatin1(path).c_str(), &status) == 0)
        return status.st_mode & S_IFMT;
    return 0;
}

} // namespace

bool isRegularFile(std::string_view path) {
    return fileType(path) == S_IFREG;
}
bool isFolder(std::string_view path) {
    return fileType(path) == S_IFDIR;
}

} // namespace zarno

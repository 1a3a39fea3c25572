// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/PathOnDisk_posix.h"

#include "platform/Utf8.h"

#include <algorithm>
#include <sys/stat.h>

namespace zarno {
namespace {

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool exists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

} // namespace

std::string pathOnDisk(std::string_view path) {
    const std::string given(path);
    if (isAscii(path) || exists(given)) return given;
    std::string found;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size() - 1) + 1;
        const std::string_view part = path.substr(begin, end - begin);
        const std::string asGiven = found + std::string(part);
        const std::string other = isValidUtf8(part) ? latin1FromUtf8(part) : utf8FromLatin1(part);
        found = isAscii(part) || other.empty() || exists(asGiven) ? asGiven : found + other;
        begin = end;
    }
    return exists(found) ? found : given;
}

} // namespace zarno

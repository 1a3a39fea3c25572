// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Paths.h"

#include "platform/WideText_win32.h"

#include <windows.h>

namespace zarno {
namespace {

DWORD attributes(std::string_view path) {
    const auto wide = widePath(path);
    return wide.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(wide.c_str());
}

} // namespace

bool isRegularFile(std::string_view path) {
    const auto bits = attributes(path);
    return bits != INVALID_FILE_ATTRIBUTES &&
           (bits & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
}

bool isFolder(std::string_view path) {
    const auto bits = attributes(path);
    return bits != INVALID_FILE_ATTRIBUTES && (bits & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Folder.h"

#include "platform/Paths.h"
#include "platform/WideText_win32.h"

#include <algorithm>
#include <windows.h>

namespace zarno {
namespace {

FolderEntry describe(const WIN32_FIND_DATAW& found) {
    FolderEntry entry;
    entry.name = utf8FromWide(found.cFileName);
    const DWORD bits = found.dwFileAttributes;
    entry.isFolder = (bits & FILE_ATTRIBUTE_DIRECTORY) != 0;
    entry.isFile = (bits & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
    // Files kept in a cloud are reparse points too, but no links.
    entry.isLink =
        (bits & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
        (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK || found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
    return entry;
}

} // namespace

std::vector<FolderEntry> listFolder(std::string_view path) {
    std::vector<FolderEntry> entries;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(widePath(joinPath(path, "*")).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return entries;
    do {
        auto entry = describe(found);
        if (entry.name != "." && entry.name != "..") entries.push_back(std::move(entry));
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return entries;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zarno {

struct FolderEntry {
    std::string name; ///< without the folder; on POSIX the very bytes, which may not be UTF-8
    bool isFolder = false;
    bool isFile = false; ///< a regular one; pipes, devices and dead links are neither
    bool isLink = false; ///< a symbolic link or junction; isFolder and isFile say what it leads to
};

/// What lies directly in `path`, "." and ".." left out, sorted by name so that every system gives one order.
/// Empty when the folder cannot be read.
std::vector<FolderEntry> listFolder(std::string_view path);

} // namespace zarno

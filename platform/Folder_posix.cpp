// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Folder.h"

#include "platform/PathOnDisk_posix.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace zarno {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

FolderEntry describe(DIR* folder, const dirent& found) {
    FolderEntry entry;
    entry.name = found.d_name;
    auto kind = found.d_type;
    if (kind == DT_UNKNOWN || kind == DT_LNK) {
        struct stat status {};
        const int at = ::dirfd(folder);
        entry.isLink = kind == DT_LNK || (::fstatat(at, found.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                                          S_ISLNK(status.st_mode));
        if (::fstatat(at, found.d_name, &status, 0) != 0) return entry;
        kind = IFTODT(status.st_mode);
    }
    entry.isFolder = kind == DT_DIR;
    entry.isFile = kind == DT_REG;
    return entry;
}

} // namespace

std::vector<FolderEntry> listFolder(std::string_view path) {
    std::vector<FolderEntry> entries;
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(pathOnDisk(path).c_str()));
    if (!folder) return entries;
    while (const dirent* found = ::readdir(folder.get())) {
        const std::string_view name = found->d_name;
        if (name != "." && name != "..") entries.push_back(describe(folder.get(), *found));
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return entries;
}

} // namespace zarno

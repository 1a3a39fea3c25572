// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Library.h"

#include "data/Limits.h"
#include "data/load/InstrumentFile.h"
#include "data/load/ReadAhead.h"
#include "platform/Folder.h"
#include "platform/Paths.h"
#include "shell/SearchPath.h"

#include <algorithm>

namespace zarno {
namespace {

bool hasExtension(std::string_view name, std::string_view extension) {
    if (name.size() <= extension.size()) return false;
    const auto end = name.substr(name.size() - extension.size());
    return std::equal(end.begin(), end.end(), extension.begin(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

struct Found {
    std::vector<std::string> zse, zs2;
};

// Links are followed, but not those behind a link: so a circle of them ends.
void collect(const std::string& folder, int level, bool behindLink, Found& found, const SignOfLife& alive) {
    alive();
    std::vector<FolderEntry> deeper;
    for (FolderEntry& entry : listFolder(folder)) {
        if (entry.isFile && hasExtension(entry.name, ".zse"))
            found.zse.push_back(joinPath(folder, entry.name));
        if (entry.isFile && hasExtension(entry.name, ".zs2"))
            found.zs2.push_back(joinPath(folder, entry.name));
        if (entry.isFolder && !(entry.isLink && behindLink)) deeper.push_back(std::move(entry));
    }
    if (level == limits::libraryDepth) return;
    for (const FolderEntry& entry : deeper)
        collect(joinPath(folder, entry.name), level + 1, behindLink || entry.isLink, found, alive);
}

// Headers of cold files come one by one from all over the disk, so it is told of the next ones early.
void addTitled(const std::vector<std::string>& paths, std::vector<Library::Entry>& entries,
               const SignOfLife& alive) {
    ReadAhead ahead;
    for (const std::string& path : paths)
        ahead.add(path, 0, headerPeekBytes);
    for (std::size_t i = 0; i < paths.size(); ++i) {
        ahead.reach(i);
        const auto names = peekHeader(paths[i]);
        alive();
        if (names && !names->name.empty() && !names->title.empty())
            entries.push_back({paths[i], names->name});
    }
}

template <typename Matches>
int firstIndex(const std::vector<Library::Entry>& entries, Matches matches) {
    const auto found = std::find_if(entries.begin(), entries.end(), matches);
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

} // namespace

Library Library::scan(const std::vector<std::string>& folders, const SignOfLife& alive) {
    Found found;
    for (const std::string& path : folders)
        for (const std::string& folder : searchPathFolders(path))
            collect(folder, 0, false, found, alive);
    Library library;
    addTitled(found.zse, library.entries, alive);
    addTitled(found.zs2, library.entries, alive);
    return library;
}

Library::Target Library::resolve(int index, const std::string& path) const {
    if (path.empty() && contains(index)) return {entries[static_cast<std::size_t>(index)].path, index};
    const int found = indexOf(path);
    return {path, found >= 0 ? found : index};
}

int Library::indexOf(std::string_view path) const {
    return firstIndex(entries, [&](const Entry& entry) { return entry.path == path; });
}

int Library::indexOfFileName(std::string_view path) const {
    const std::string name = fileName(fromBackslashForm(path));
    return firstIndex(entries, [&](const Entry& entry) { return fileName(entry.path) == name; });
}

std::string libraryFolderBeside(std::string_view modulePath) {
    if (modulePath.empty()) return {};
    return joinPath(parentPath(modulePath), fileStem(modulePath) + ".instruments");
}

} // namespace zarno

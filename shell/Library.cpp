// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Library.h"

#include "data/load/InstrumentFile.h"
#include "data/load/ReadAhead.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"
#include "shell/LibraryScan.h"
#include "shell/SearchPath.h"

#include <algorithm>

namespace zarno {
namespace {

// Headers of cold files come one by one from all over the disk, so it is told of the next ones early.
void addTitled(const std::vector<std::string>& paths, std::vector<Library::Entry>& entries, LibraryScan& scan,
               const SignOfLife& alive) {
    ReadAhead ahead;
    for (const std::string& path : paths)
        ahead.add(path, 0, headerPeekBytes);
    for (std::size_t i = 0; i < paths.size() && scan.isInTime(); ++i) {
        ahead.reach(i);
        const auto names = peekHeader(paths[i]);
        alive();
        if (names && !names->name.empty() && !names->title.empty())
            entries.push_back({paths[i], toUtf8(names->name)});
    }
}

// Where a host sees the plug-in: Name.vst3/Contents/ARCHITECTURE/module, Name.lv2/module, or the module itself.
std::string bundleOrModule(const std::string& module) {
    const auto folder = parentPath(module);
    if (folder.ends_with(".lv2")) return folder;
    const auto contents = parentPath(folder);
    const auto bundle = parentPath(contents);
    return fileName(contents) == "Contents" && bundle.ends_with(".vst3") ? bundle : module;
}

template <typename Matches>
int firstIndex(const std::vector<Library::Entry>& entries, Matches matches) {
    const auto found = std::find_if(entries.begin(), entries.end(), matches);
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

} // namespace

Library Library::scan(const std::vector<std::string>& folders, const SignOfLife& alive) {
    return scan(folders, alive, ScanLimits());
}

Library Library::scan(const std::vector<std::string>& folders, const SignOfLife& alive, ScanLimits limits,
                      const Clock& clock) {
    LibraryScan scan(alive, limits, clock);
    for (const std::string& path : folders)
        for (const std::string& folder : searchPathFolders(path))
            scan.walk(folder);
    scan.followLinks();
    Library library;
    addTitled(scan.zse, library.entries, scan, alive);
    addTitled(scan.zs2, library.entries, scan, alive);
    library.leftOut = scan.leftOut();
    return library;
}

Library Library::unanswered() {
    return {{}, "The library folder does not answer: its disk or network is away."};
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
    const std::string name = toUtf8Path(fileName(fromBackslashForm(path)));
    const int same = firstIndex(entries, [&](const Entry& entry) { return fileName(entry.path) == name; });
    if (same >= 0) return same;
    const std::string folded = withFoldedCase(name);
    return firstIndex(entries,
                      [&](const Entry& entry) { return withFoldedCase(fileName(entry.path)) == folded; });
}

std::vector<std::string> libraryFoldersBeside(const std::vector<std::string>& modulePaths) {
    std::vector<std::string> folders;
    for (const std::string& path : modulePaths) {
        const auto place = bundleOrModule(path);
        auto folder = joinPath(parentPath(place), fileStem(place) + ".instruments");
        if (std::find(folders.begin(), folders.end(), folder) == folders.end())
            folders.push_back(std::move(folder));
    }
    return folders;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SampleSearch.h"

#include "platform/Folder.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"
#include "shell/SearchPath.h"

#include <algorithm>

namespace zarno {
namespace {

bool isFileSystemRoot(const std::string& folder) {
    const bool isDrive = folder.size() <= 3 && folder.size() >= 2 && folder[1] == ':';
    return isDrive || parentPath(folder) == folder || parentPath(folder).empty();
}

bool isOfTheSystem(const std::string& folder) {
    return folder == "/proc" || folder == "/sys" || folder == "/dev";
}

} // namespace

SampleSearch::SampleSearch(Places places, Limits limits, std::function<bool()> goOn, const Clock& clock)
    : places_(std::move(places))
    , limits_(limits)
    , goOn_(std::move(goOn))
    , clock_(clock) {}

std::string SampleSearch::find(const std::string& missingPath) {
    std::string path = missingPath;
#ifdef _WIN32
    if (!path.empty() && path.front() == '/') path = "c:" + path; // kept from where there are no drives
#endif
    const std::string name = toUtf8(fileName(path));
    if (name.empty()) return {};
    std::string found = findBelow(parentPath(path), name, false);
    if (found.empty() && !places_.chosenFolder.empty()) found = findBelow(places_.chosenFolder, name, true);
    if (found.empty() && places_.chosenFolder.empty()) found = findBelow(places_.homeFolder, name, false);
    return found;
}

std::string SampleSearch::findBelow(const std::string& searchPath, const std::string& name, bool chosen) {
    std::string found;
    for (const std::string& folder : searchPathFolders(searchPath))
        if (found.empty()) found = findInFolder(folder, name, chosen);
    return found;
}

std::string SampleSearch::findInFolder(const std::string& folder, const std::string& name, bool chosen) {
    if (!chosen && (isFileSystemRoot(folder) || isOfTheSystem(folder))) return {};
    const auto [place, isNew] = walks_.try_emplace(folder);
    Walk& walk = place->second;
    if (isNew) walk.waiting.push_back(folder);
    auto exact = walk.byName.find(name);
    for (; exact == walk.byName.end() && mayGoOn(walk, chosen); exact = walk.byName.find(name))
        stepInto(walk);
    if (exact != walk.byName.end()) return exact->second;
    const auto similar = walk.byFoldedName.find(withFoldedCase(name));
    return similar == walk.byFoldedName.end() ? std::string() : similar->second;
}

bool SampleSearch::mayGoOn(const Walk& walk, bool chosen) const {
    return !walk.waiting.empty() && (!goOn_ || goOn_()) && spentMs_ < limits_.totalMs &&
           (chosen || walk.spentMs < limits_.placeMs);
}

// Reads one more folder.
void SampleSearch::stepInto(Walk& walk) {
    const double begin = clock_.nowMs();
    const std::string folder = std::move(walk.waiting.back());
    walk.waiting.pop_back();
    const auto entries = listFolder(folder);
    for (const FolderEntry& entry : entries) {
        if (!entry.isFile) continue;
        const std::string name = toUtf8(entry.name);
        walk.byName.emplace(name, joinPath(folder, entry.name));
        walk.byFoldedName.emplace(withFoldedCase(name), joinPath(folder, entry.name));
    }
    // Backwards, since the last one is taken first. Links are not followed.
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
        if (entry->isFolder && !entry->isLink && !isOfTheSystem(joinPath(folder, entry->name)))
            walk.waiting.push_back(joinPath(folder, entry->name));
    const double spent = clock_.nowMs() - begin;
    walk.spentMs += spent;
    spentMs_ += spent;
}

} // namespace zarno

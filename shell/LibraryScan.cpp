// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LibraryScan.h"

#include "platform/Folder.h"
#include "platform/Machine.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"

#include <algorithm>

namespace zarno {
namespace {

bool hasExtension(std::string_view name, std::string_view extension) {
    if (name.size() <= extension.size()) return false;
    const auto end = name.substr(name.size() - extension.size());
    return std::equal(end.begin(), end.end(), extension.begin(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

} // namespace

LibraryScan::LibraryScan(const SignOfLife& alive, Library::ScanLimits limits, const Clock& clock)
    : alive_(alive)
    , limits_(limits)
    , clock_(clock)
    , begin_(clock.nowMs()) {}

bool LibraryScan::isInTime() {
    tooLong_ = tooLong_ || clock_.nowMs() - begin_ > limits_.ms;
    return !tooLong_;
}

bool LibraryScan::mayGoOn() {
    tooMany_ = tooMany_ || entries_ > limits_.entries;
    return !tooMany_ && isInTime();
}

void LibraryScan::walk(const std::string& folder) {
    roots_.push_back(toUtf8Path(folder));
    enter(roots_.back(), 0, false);
}

void LibraryScan::enter(const std::string& folder, int level, bool isBehindLink) {
    if (!mayGoOn()) return;
    if (!isBehindLink) realFolders_.push_back(folder);
    std::vector<std::string> deeper;
    for (const FolderEntry& entry : listFolder(folder)) {
        ++entries_;
        std::string path = joinPath(folder, toUtf8(entry.name));
        if (entry.isFile && hasExtension(entry.name, ".zse")) zse.push_back(path);
        if (entry.isFile && hasExtension(entry.name, ".zs2")) zs2.push_back(path);
        if (entry.isFolder && entry.isLink)
            links_.push_back({std::move(path), level + 1});
        else if (entry.isFolder)
            deeper.push_back(std::move(path));
    }
    alive_();
    tooDeep_ = tooDeep_ || (level == limits::libraryDepth && !deeper.empty());
    if (level == limits::libraryDepth) return;
    for (const std::string& next : deeper)
        if (!isBehindLink || visited_.insert(fileIdentity(next)).second) enter(next, level + 1, isBehindLink);
}

// Asking for identities takes a call to the system for each folder, which most libraries, without links, do
// not need.
void LibraryScan::learnRealFolders() {
    for (const std::string& folder : realFolders_) {
        visited_.insert(fileIdentity(folder));
        alive_();
    }
    for (std::string folder : roots_)
        for (std::string next = parentPath(folder); !next.empty() && next != folder;
             next = parentPath(folder)) {
            folder = next;
            holders_.insert(fileIdentity(folder));
            alive_();
        }
}

void LibraryScan::followLinks() {
    if (!links_.empty()) learnRealFolders();
    for (std::size_t i = 0; i < links_.size(); ++i) { // the list grows meanwhile
        const auto [path, level] = links_[i];
        if (level > limits::libraryDepth) {
            tooDeep_ = true;
            continue;
        }
        const std::string identity = fileIdentity(path);
        alive_();
        if (identity.empty()) continue;
        if (holders_.count(identity) != 0)
            circle_ = circle_.empty() ? path : circle_;
        else if (visited_.insert(identity).second)
            enter(path, level, true);
    }
}

std::string LibraryScan::leftOut() const {
    std::string text;
    const auto add = [&](const std::string& sentence) { text += (text.empty() ? "" : " ") + sentence; };
    if (tooMany_)
        add("The library folder holds more than " + std::to_string(limits_.entries) +
            " files and folders, and the instruments after those are not listed.");
    if (tooLong_)
        add("Reading the library folder took more than " +
            std::to_string(static_cast<long long>(limits_.ms / 1000.0)) +
            " seconds, and the instruments that were not reached are not listed.");
    if (tooDeep_)
        add("Folders more than " + std::to_string(limits::libraryDepth) + " levels deep are not listed.");
    if (!circle_.empty())
        add("The link \"" + circle_ + "\" leads to a folder that holds the library, and is not followed.");
    return text;
}

} // namespace zarno

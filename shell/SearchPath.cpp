// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SearchPath.h"

#include "platform/Paths.h"

namespace zarno {
namespace {

void addTrimmed(const std::string& entry, std::vector<std::string>& folders) {
    const auto first = entry.find_first_not_of(" \t");
    if (first == std::string::npos) return;
    const auto last = entry.find_last_not_of(" \t");
    folders.push_back(entry.substr(first, last - first + 1));
}

} // namespace

std::vector<std::string> searchPathFolders(const std::string& text) {
    if (isFolder(text)) return {text};
    std::vector<std::string> folders;
    std::string entry;
    bool quoted = false;
    for (const char c : text) {
        if (c == '"') {
            quoted = !quoted;
        } else if (c == ';' && !quoted) {
            addTrimmed(entry, folders);
            entry.clear();
        } else {
            entry += c;
        }
    }
    addTrimmed(entry, folders);
    return folders;
}

} // namespace zarno

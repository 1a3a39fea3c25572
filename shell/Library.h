// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Limits.h"
#include "platform/Clock.h"
#include "platform/RunWithTimeout.h"

#include <string>
#include <string_view>
#include <vector>

namespace zarno {

/// The instruments a module offers, in program order. Scanned once.
struct Library {
    struct Entry {
        std::string path;  ///< full, native form, UTF-8
        std::string title; ///< UTF-8
    };
    struct ScanLimits {
        std::size_t entries = limits::libraryEntries;
        double ms = limits::libraryMs;
    };

    std::vector<Entry> entries;
    /// What the scan left out and why, in one or more English sentences; empty when it reached everything.
    std::string leftOut;

    /// Reads the names of every instrument below `folders`, each a search path: all "*.zse" of all folders
    /// first, then all "*.zs2". Within that, folder by folder and name by name, what lies in a folder before
    /// what lies deeper, and what only a link leads to after all else. A folder is read once, however many
    /// links lead to it; a link to a folder that holds the library is not followed. A file that is no
    /// instrument, or has no name or title, is left out. Reads the file headers and nothing else. `alive` is
    /// called whenever a folder or a file has answered.
    static Library scan(
        const std::vector<std::string>& folders, const SignOfLife& alive = [] {});
    static Library scan(const std::vector<std::string>& folders, const SignOfLife& alive, ScanLimits limits,
                        const Clock& clock = systemClock());
    /// An empty library that says that its folder does not answer.
    static Library unanswered();

    /// What a choice means: entry `index` when `path` is empty, else that path, with the index of the first entry
    /// that has it, or `index` when none has. An empty path when there is nothing to choose.
    struct Target {
        std::string path;
        int index = -1;
    };
    Target resolve(int index, const std::string& path) const;

    /// -1 when no entry has this very path.
    int indexOf(std::string_view path) const;
    /// The first entry with the same file name, else the first whose name differs only in case: -1 when there
    /// is none.
    int indexOfFileName(std::string_view path) const;

    bool contains(int index) const { return index >= 0 && static_cast<std::size_t>(index) < entries.size(); }
};

/// The library folders of a module that `modulePaths` lead to, in that order: beside the module, named like it without
/// extension plus ".instruments". For a module in a bundle ("Name.vst3", "Name.lv2") the bundle takes its place.
std::vector<std::string> libraryFoldersBeside(const std::vector<std::string>& modulePaths);

} // namespace zarno

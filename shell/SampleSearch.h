// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Limits.h"
#include "platform/Clock.h"

#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace zarno {

/// Looks for the missing samples of one load by their file names: below the folder where each should be, then
/// below the folder that the user chose once. What a walk has seen is remembered, so that any number of
/// samples in one place cost one walk. One thread at a time.
class SampleSearch {
  public:
    struct Places {
        std::string chosenFolder; ///< by the user, a search path; empty when there is none yet
        std::string homeFolder;   ///< looked into when nothing was chosen; empty: nowhere
    };
    struct Limits {
        double totalMs = limits::searchMs;       ///< all walks of one search together
        double placeMs = limits::unaskedPlaceMs; ///< one place that nobody chose
    };
    /// With an editor open: the user can be asked, and sees why it takes so long.
    static constexpr Limits whileWatched{1e9, limits::watchedPlaceMs};

    /// `goOn` is asked at every folder.
    SampleSearch(Places places, Limits limits, std::function<bool()> goOn,
                 const Clock& clock = systemClock());

    /// The full path, in the bytes of the disk, of a file with the name of `missingPath`; one that differs only
    /// in case when no other is there; empty when nothing is found. Names are compared as UTF-8, those in other
    /// encodings as toUtf8 converts them.
    std::string find(const std::string& missingPath);

    /// The user says where to look from now on: a search path.
    void choose(const std::string& folder) { places_.chosenFolder = folder; }

  private:
    struct Walk {
        std::vector<std::string> waiting; // folders, the next one last
        std::unordered_map<std::string, std::string> byName, byFoldedName;
        double spentMs = 0.0;
    };

    std::string findBelow(const std::string& searchPath, const std::string& name, bool chosen);
    std::string findInFolder(const std::string& folder, const std::string& name, bool chosen);
    bool mayGoOn(const Walk& walk, bool chosen) const;
    void stepInto(Walk& walk);

    Places places_;
    const Limits limits_;
    const std::function<bool()> goOn_;
    const Clock& clock_;
    std::map<std::string, Walk> walks_;
    double spentMs_ = 0.0;
};

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/RunWithTimeout.h"
#include "shell/Library.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace zarno {

/// One walk over the folders of a library: which instrument files there are, and what it could not reach. One
/// thread.
class LibraryScan {
  public:
    LibraryScan(const SignOfLife& alive, Library::ScanLimits limits, const Clock& clock);

    /// Collects the files below `folder`; links are kept for followLinks.
    void walk(const std::string& folder);
    /// To be called once, after all folders of the library.
    void followLinks();

    /// False, and noted for leftOut, when the scan has taken as long as it may.
    bool isInTime();
    std::string leftOut() const;

    std::vector<std::string> zse, zs2; ///< UTF-8 paths, in the order of the walk

  private:
    struct Link {
        std::string path;
        int level = 0;
    };

    bool mayGoOn();
    void enter(const std::string& folder, int level, bool isBehindLink);
    void learnRealFolders();

    const SignOfLife& alive_;
    const Library::ScanLimits limits_;
    const Clock& clock_;
    const double begin_;
    std::size_t entries_ = 0;
    std::vector<std::string> roots_, realFolders_;
    std::vector<Link> links_;
    std::unordered_set<std::string> visited_, holders_; // identities of folders
    std::string circle_;                                // the first link that leads to a holder
    bool tooMany_ = false, tooLong_ = false, tooDeep_ = false;
};

} // namespace zarno

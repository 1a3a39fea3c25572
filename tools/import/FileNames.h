// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace zarno {

/// Makes names for files that every system takes: no folders, no characters that one of them refuses, none
/// twice in upper or lower case.
class FileNames {
  public:
    /// A name without extension, like `wish`.
    std::string make(std::string_view wish);

  private:
    std::set<std::string> used_; // in lower case
};

} // namespace zarno

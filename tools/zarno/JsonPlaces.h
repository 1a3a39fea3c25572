// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace zarno {

/// Where the members of a JSON text begin, which the parser does not keep.
class JsonPlaces {
  public:
    struct Place {
        int line = 1, column = 1; ///< of characters, from 1
    };

    /// `text` must be valid JSON.
    explicit JsonPlaces(std::string_view text);

    /// Of the member `where` ("groups[2].name"), or of what would hold it when it is not there.
    Place of(std::string where) const;

  private:
    std::unordered_map<std::string, Place> places_;
};

} // namespace zarno

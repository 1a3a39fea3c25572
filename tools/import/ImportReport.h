// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/zarno/JsonObject.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zarno {

/// What an import made, and what it could not express: each kind of thing once, with a count, what was done
/// instead, and where it was met first.
class ImportReport {
  public:
    struct Remark {
        std::string what, instead, firstPlace;
        std::uint64_t count = 0;
    };

    /// `what` and `instead` together are one kind of remark. Beyond `mostRemarks` kinds the rest are counted
    /// as one.
    void add(std::string_view what, std::string_view instead, std::string_view place,
             std::uint64_t count = 1);

    const std::vector<Remark>& remarks() const { return remarks_; }
    /// The count of the remarks about `what`, 0 when there is none.
    std::uint64_t count(std::string_view what) const;

    std::string source, target;
    std::uint64_t groups = 0, zones = 0, samples = 0;
    std::uint64_t sampleBytes = 0; ///< of sample data written
    bool streaming = false, embedded = false;

    Json toJson() const;
    /// One line a remark.
    std::string toText() const;

    static constexpr std::size_t mostRemarks = 200;

  private:
    std::vector<Remark> remarks_;
};

} // namespace zarno

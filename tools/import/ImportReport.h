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
    enum class Severity {
        Error, ///< it does not sound as an instrument should: silence, one side only, clipping
        Loss,  ///< something of the source is not heard, or is heard differently
        Note   ///< done in another way, and hardly to be heard
    };
    struct Remark {
        Severity severity = Severity::Loss;
        std::string what, instead, firstPlace;
        std::uint64_t count = 0;
    };

    /// `what` and `instead` together are one kind of remark. Beyond `mostRemarks` kinds the rest are counted
    /// as one. Without a severity it is a loss.
    void add(Severity severity, std::string_view what, std::string_view instead, std::string_view place,
             std::uint64_t count = 1);
    void add(std::string_view what, std::string_view instead, std::string_view place,
             std::uint64_t count = 1) {
        add(Severity::Loss, what, instead, place, count);
    }
    void note(std::string_view what, std::string_view instead, std::string_view place,
              std::uint64_t count = 1) {
        add(Severity::Note, what, instead, place, count);
    }
    /// All of another report's remarks.
    void addAll(const ImportReport& other);

    const std::vector<Remark>& remarks() const { return remarks_; }
    /// The count of the remarks about `what`, 0 when there is none.
    std::uint64_t count(std::string_view what) const;

    std::string source, target;
    std::uint64_t groups = 0, zones = 0, samples = 0;
    std::uint64_t sampleBytes = 0; ///< of sample data written
    std::uint64_t shapedBytes = 0; ///< of those in shaped copies, in 16 bits
    bool streaming = false, embedded = false;

    Json toJson() const;
    /// What was made; empty before anything was.
    std::string summary() const;
    /// The remarks by severity, those met most often first, a line each. No more than `mostLines`, 0 for all.
    std::string remarksText(std::size_t mostLines) const;

    static constexpr std::size_t mostRemarks = 200;

  private:
    std::vector<Remark> remarks_;
    std::size_t overflow_ = 0; // 1 behind the index of the remark that counts all others
};

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/zarno/MakerError.h"

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zarno {

/// What is wrong in a JSON file, collected while it is read, so that its maker hears of everything at once.
class JsonFaults {
  public:
    /// `where`: the member, "groups[2].name".
    void add(const std::string& where, const std::string& why) { faults_.push_back({where, why}); }
    /// Runs `work` and keeps a MakerError that it throws.
    template <typename Work>
    void guard(Work work) {
        try {
            work();
        } catch (const MakerError& error) {
            add(error.where, error.why);
        }
    }

    bool isEmpty() const { return faults_.empty(); }
    /// Throws MakerErrors with all of them when there are any; `text` is the file's, for lines and columns.
    void throwIfAny(const std::string& file, std::string_view text) const;

  private:
    struct Fault {
        std::string where, why;
    };
    std::vector<Fault> faults_;
};

/// `; did you mean "lowKey"?` for the most similar of `known` when one is close, else nothing.
std::string suggestion(std::string_view given, std::span<const std::string_view> known);

} // namespace zarno

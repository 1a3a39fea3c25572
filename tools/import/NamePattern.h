// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zarno {

/// What the name of a sound file says.
struct NameParts {
    std::optional<int> key;
    std::optional<int> number;   ///< one that may be a key when all files have one
    std::optional<int> velocity; ///< grows with the velocity: a number, or the place of a word like "mf"
    std::optional<int> robin;
    std::string name; ///< the rest: what sound it is
};

/// Reads file names. Without a pattern the words of a name are taken for what they look like: "C#4" or "c#4"
/// a key, "v2", "vel90" or "ff" a velocity, "rr3" a round robin, a number perhaps a key.
///
/// A pattern says where things stand: {key} a note name or number, {velocity}, {robin}, {name}, and {} for
/// what says nothing; other characters are themselves, in upper or lower case. "{name}_{key}_v{velocity}"
class NamePattern {
  public:
    /// Throws MakerError when a pattern has a placeholder of another name.
    explicit NamePattern(const std::string& pattern);
    ~NamePattern();

    /// `stem`: without folder and extension. None when it does not fit the pattern.
    std::optional<NameParts> read(const std::string& stem) const;

  private:
    struct Compiled;
    std::unique_ptr<Compiled> compiled_; // null: as it comes
};

} // namespace zarno

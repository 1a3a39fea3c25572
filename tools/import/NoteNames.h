// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zarno {

/// "C4" for 60.
std::string keyName(int key);

/// The key of a number ("60") or of a note name with its octave ("C#4", "eb-1"; C4 is 60). None for anything
/// else, and for keys outside -128..255.
std::optional<int> keyFromText(std::string_view text);

} // namespace zarno

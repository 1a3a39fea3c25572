// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace zarno {

/// Every field of the members "settings" of instrument.json with unit, range, start value and meaning, as
/// Markdown.
std::string fieldReference();

} // namespace zarno

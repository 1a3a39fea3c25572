// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace zarno {

// The XML parser recurses for each level of elements, expands entities and keeps every attribute name for
// good. This walks a text as that parser does, without building anything or recursing.
//
// Null when the parser may read the text (UTF-8, zero-terminated behind its end), else why it must not. Text
// that is merely malformed passes: the parser says better what is wrong with it.
const char* refuseXml(std::string_view text);

} // namespace zarno

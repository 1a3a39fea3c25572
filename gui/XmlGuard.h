// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace zarno {

// What a text may ask of the XML parser, which recurses for each level of elements, expands entities and
// keeps every attribute name for good. Walks the text as that parser does, without building anything or
// recursing.
struct XmlLimits {
    int nesting = 64;
    int elements = 10000;
    int attributes = 40000;
};

// Null when the parser may read the text (UTF-8, zero-terminated behind its end), else why it must not. Text
// that is merely malformed passes: the parser says better what is wrong with it.
const char* refuseXml(std::string_view text, const XmlLimits& limits = {});

} // namespace zarno

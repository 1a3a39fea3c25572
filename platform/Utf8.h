// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace zarno {

/// True when `text` is well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUtf8(std::string_view text);

/// Each byte becomes the code point of the same number.
std::string utf8FromLatin1(std::string_view text);

/// The reverse. Empty when `text` is not valid UTF-8 or holds a code point above U+00FF.
std::string latin1FromUtf8(std::string_view text);

/// UTF-8 text with the letters A to Z and those of Latin-1 in lower case, which are the letters whose case
/// differs between file systems in practice.
std::string withFoldedCase(std::string text);

/// Text of an unknown maker: kept when it is valid UTF-8, else converted from the system's code page (Latin-1
/// on POSIX). The result is always valid UTF-8.
std::string toUtf8(std::string_view text);

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

// Text in the form the Win32 calls want. Only the *_win32.cpp twins include this.
namespace zarno {

/// UTF-8 when valid, else the system's code page.
std::wstring wideText(std::string_view text);
std::string utf8FromWide(std::wstring_view text);

/// A path for the wide file calls: backslashes, and the \\?\ prefix where it is too long without. Empty for a
/// text that cannot be a path.
std::wstring widePath(std::string_view path);

} // namespace zarno

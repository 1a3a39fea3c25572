// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

// Names as they lie on a POSIX disk. Only the *_posix.cpp twins include this.
namespace zarno {

/// `path` in the spelling that exists: each part is tried as given, then in its other form, Latin-1 bytes for
/// UTF-8 text and UTF-8 for other bytes. `path` itself when it is there, or when none is. Asks the disk only
/// for paths outside ASCII.
std::string pathOnDisk(std::string_view path);

} // namespace zarno

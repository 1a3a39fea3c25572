// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace zarno {

/// The SHA-256 of a file (FIPS 180-4) in hex, as sha256sum prints it. Throws MakerError when it cannot be
/// read.
std::string sha256OfFile(const std::string& path);

} // namespace zarno

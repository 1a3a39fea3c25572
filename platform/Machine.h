// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zarno {

/// The same bytes for all paths that lead to one file or folder, regardless of links, dots and letter case in
/// them; another's differ while both are there. Empty when there is none. Asks the disk.
std::string fileIdentity(std::string_view path);

/// Bytes of memory that the machine has; 0 when it does not say.
std::uint64_t physicalMemory();

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace zarno {

/// The program's arguments in UTF-8, without its name, in the order given. What main receives on Windows is
/// in the system's code page, in which many file names cannot be written.
std::vector<std::string> utf8Arguments(int count, char** arguments);

} // namespace zarno

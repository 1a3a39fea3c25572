// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace zarno {

/// A program's arguments as UTF-8, its own name first. On Windows main gets them in a code page that cannot
/// hold every file name, so they are asked for again.
std::vector<std::string> utf8Arguments(int argc, char** argv);

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace zarno {

// How many threads of this process go by the name. Some systems keep 15 bytes of it.
int threadsNamed(const std::string& wanted);

} // namespace zarno

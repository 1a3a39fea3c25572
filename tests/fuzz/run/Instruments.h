// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace zarno::fuzz {

// Small instruments of every kind: external and embedded, in memory and streamed, and some that lie.
std::vector<std::string> instrumentSeeds();

} // namespace zarno::fuzz

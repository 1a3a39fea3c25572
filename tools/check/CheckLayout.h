// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/check/Finding.h"

#include <string_view>

namespace zarno {

/// What is wrong with a panel's layout.
void checkLayout(std::string_view layout, Findings& findings);

} // namespace zarno

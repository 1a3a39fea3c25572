// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace zarno {

/// Shows the user a box (UTF-8) without an owner, in the foreground, on a thread of its own, and returns at
/// once. The box may outlive its caller: the module stays in memory until the user has dismissed it. [any but
/// audio]
void showMessageBox(std::string_view title, std::string_view text);

} // namespace zarno

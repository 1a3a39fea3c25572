// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace zarno {

/// Tells the user something (UTF-8) and waits until it is dismissed: a box without an owner, in the
/// foreground. Never called on the audio thread. On POSIX the text goes to the standard error stream and
/// nothing waits.
void showMessageBox(std::string_view title, std::string_view text);

} // namespace zarno

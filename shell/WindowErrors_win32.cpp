// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/WindowErrors.h"

namespace zarno {

// On Windows a failing call only returns an error to its caller.
WindowErrors::WindowErrors() = default;
WindowErrors::~WindowErrors() = default;

} // namespace zarno

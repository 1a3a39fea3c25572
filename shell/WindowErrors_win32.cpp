// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/WindowErrors.h"

namespace zarno {

// Here a call that fails says so to its caller, and to nobody else.
WindowErrors::WindowErrors() = default;
WindowErrors::~WindowErrors() = default;

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/SystemDesktop.h"

#include <windows.h>

namespace zarno {

struct SystemDesktop::System {};

SystemDesktop::SystemDesktop() = default;
SystemDesktop::~SystemDesktop() = default;

bool SystemDesktop::isViewable(void* handle) const {
    return handle == nullptr || IsWindowVisible(static_cast<HWND>(handle)) != FALSE;
}

double SystemDesktop::desktopScale() const {
    return 1.0;
}

} // namespace zarno

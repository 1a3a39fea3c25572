// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/NativeWindow.h"

#include <windows.h>

namespace zarno {

struct NativeWindow::System {};

NativeWindow::NativeWindow() = default;
NativeWindow::~NativeWindow() = default;

bool NativeWindow::isViewable(void* handle) const {
    return handle == nullptr || IsWindowVisible(static_cast<HWND>(handle)) != FALSE;
}

double NativeWindow::desktopScale() const {
    return 1.0;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/MessageBox.h"

#include "platform/WideText_win32.h"

#include <windows.h>

namespace zarno {

void showMessageBox(std::string_view title, std::string_view text) {
    MessageBoxW(nullptr, wideText(text).c_str(), wideText(title).c_str(), MB_OK | MB_SETFOREGROUND);
}

} // namespace zarno

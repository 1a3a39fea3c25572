// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Utf8.h"

#include "platform/WideText_win32.h"

namespace zarno {

std::string toUtf8(std::string_view text) {
    return isValidUtf8(text) ? std::string(text) : utf8FromWide(wideText(text));
}

} // namespace zarno

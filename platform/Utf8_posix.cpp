// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Utf8.h"

namespace zarno {

std::string toUtf8(std::string_view text) {
    return isValidUtf8(text) ? std::string(text) : utf8FromLatin1(text);
}

} // namespace zarno

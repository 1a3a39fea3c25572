// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/MessageBox.h"

#include <cstdio>

namespace zarno {

void showMessageBox(std::string_view title, std::string_view text) {
    std::fprintf(stderr, "%.*s: %.*s\n", static_cast<int>(title.size()), title.data(),
                 static_cast<int>(text.size()), text.data());
}

} // namespace zarno

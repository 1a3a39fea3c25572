// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/common/Utf8Arguments.h"

namespace zarno {

std::vector<std::string> utf8Arguments(int count, char** arguments) {
    return {arguments + 1, arguments + count};
}

} // namespace zarno

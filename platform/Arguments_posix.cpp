// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Arguments.h"

namespace zarno {

std::vector<std::string> utf8Arguments(int argc, char** argv) {
    return {argv, argv + argc};
}

} // namespace zarno

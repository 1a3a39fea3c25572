// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Arguments.h"

#include "platform/WideText_win32.h"

#include <windows.h>

#include <shellapi.h>

namespace zarno {

std::vector<std::string> utf8Arguments(int argc, char** argv) {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!wide) return {argv, argv + argc};
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(utf8FromWide(wide[i]));
    LocalFree(wide);
    return arguments;
}

} // namespace zarno

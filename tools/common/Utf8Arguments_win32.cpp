// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/common/Utf8Arguments.h"

#include "platform/WideText_win32.h"

#include <windows.h>

#include <shellapi.h>

namespace zarno {

std::vector<std::string> utf8Arguments(int, char**) {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; wide != nullptr && i < count; ++i)
        result.push_back(utf8FromWide(wide[i]));
    LocalFree(wide);
    return result;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/common/Utf8Arguments.h"

#ifdef _WIN32
#include "platform/WideText_win32.h"

#include <windows.h>

#include <shellapi.h>
#endif

namespace zarno {

std::vector<std::string> utf8Arguments(int count, char** arguments) {
#ifdef _WIN32
    (void) arguments;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; wide != nullptr && i < count; ++i)
        result.push_back(utf8FromWide(wide[i]));
    LocalFree(wide);
    return result;
#else
    return {arguments + 1, arguments + count};
#endif
}

} // namespace zarno

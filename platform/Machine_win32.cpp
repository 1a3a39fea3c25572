// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Machine.h"

#include "platform/WideText_win32.h"

#include <windows.h>

namespace zarno {

std::string fileIdentity(std::string_view path) {
    const auto wide = widePath(path);
    if (wide.empty()) return {};
    const HANDLE file = CreateFileW(wide.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    BY_HANDLE_FILE_INFORMATION about{};
    const bool known = GetFileInformationByHandle(file, &about) != 0;
    CloseHandle(file);
    if (!known) return {};
    return std::to_string(about.dwVolumeSerialNumber) + ':' + std::to_string(about.nFileIndexHigh) + ':' +
           std::to_string(about.nFileIndexLow);
}

std::uint64_t physicalMemory() {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) != 0 ? status.ullTotalPhys : 0;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/WideText_win32.h"

#include "platform/Utf8.h"

#include <algorithm>
#include <limits>

#include <windows.h>

namespace zarno {
namespace {

// CreateFileW takes 259 characters, but CreateDirectoryW keeps 12 of them for a file name: stay under both.
constexpr std::size_t longestPlainPath = 247;
constexpr std::size_t longestPath = 32767;

std::wstring fullPath(const std::wstring& path) {
    const DWORD needed = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(needed, L'\0');
    const DWORD length = needed == 0 ? 0 : GetFullPathNameW(path.c_str(), needed, full.data(), nullptr);
    full.resize(length < needed ? length : 0);
    return full;
}

} // namespace

std::wstring wideText(std::string_view text) {
    if (text.empty() || text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return {};
    const UINT page = isValidUtf8(text) ? CP_UTF8 : CP_ACP;
    const int size = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(page, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(needed, 0)), L'\0');
    MultiByteToWideChar(page, 0, text.data(), size, wide.data(), needed);
    return wide;
}

std::string utf8FromWide(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(std::max(needed, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, utf8.data(), needed, nullptr, nullptr);
    return utf8;
}

std::wstring widePath(std::string_view path) {
    if (path.find('\0') != std::string_view::npos) return {};
    std::wstring wide = wideText(path);
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    if (wide.size() <= longestPlainPath || wide.starts_with(L"\\\\?\\")) return wide;
    if (wide.size() > longestPath) return {};
    // The prefix switches off the resolution of "." and "..", so it is done here.
    wide = fullPath(wide);
    if (wide.empty()) return {};
    return wide.starts_with(L"\\\\") ? L"\\\\?\\UNC" + wide.substr(1) : L"\\\\?\\" + wide;
}

} // namespace zarno

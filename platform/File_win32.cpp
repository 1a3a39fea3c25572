// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"

#include "platform/WideText_win32.h"

#include <algorithm>

#include <windows.h>

namespace zarno {
namespace {

HANDLE asHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

} // namespace

bool File::open(std::string_view path) {
    close();
    const auto wide = widePath(path);
    if (wide.empty()) return false;
    // Every kind of sharing: an instrument being played must not keep its maker from saving it again.
    const HANDLE file =
        CreateFileW(wide.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;

    LARGE_INTEGER size{};
    if (GetFileType(file) != FILE_TYPE_DISK || !GetFileSizeEx(file, &size)) {
        CloseHandle(file);
        return false;
    }
    handle_ = reinterpret_cast<std::intptr_t>(file);
    size_ = static_cast<std::uint64_t>(size.QuadPart);
    position_ = 0;
    return true;
}

void File::close() noexcept {
    if (isOpen()) CloseHandle(asHandle(handle_));
    handle_ = closed;
    size_ = 0;
    position_ = 0;
}

std::size_t File::readAt(std::uint64_t offset, void* destination, std::size_t count) const {
    if (!isOpen()) return 0;
    constexpr std::size_t mostAtOnce = 1u << 30; // ReadFile counts in 32 bits
    std::size_t done = 0;
    while (done < count && offset + done >= offset) {
        // An offset given this way leaves nothing shared between two reads on one handle.
        OVERLAPPED at{};
        at.Offset = static_cast<DWORD>(offset + done);
        at.OffsetHigh = static_cast<DWORD>((offset + done) >> 32);
        DWORD got = 0;
        const auto wanted = static_cast<DWORD>(std::min(count - done, mostAtOnce));
        if (!ReadFile(asHandle(handle_), static_cast<char*>(destination) + done, wanted, &got, &at) ||
            got == 0)
            break;
        done += got;
    }
    return done;
}

void File::adviseRandom() const {}

void File::adviseNeeded(std::uint64_t, std::uint64_t) const {}

} // namespace zarno

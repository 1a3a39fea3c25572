// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/WideText_win32.h"
#include "tests/support/ThreadNames.h"

#include <windows.h>

#include <tlhelp32.h>

namespace zarno {
namespace {

std::wstring nameOf(DWORD thread) {
    using GetDescription = HRESULT(WINAPI*)(HANDLE, PWSTR*); // not in older import libraries
    static const auto getDescription = reinterpret_cast<GetDescription>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetThreadDescription")));
    const HANDLE handle = OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, thread);
    std::wstring name;
    wchar_t* text = nullptr;
    if (handle != nullptr && SUCCEEDED(getDescription(handle, &text))) name = text;
    LocalFree(text);
    if (handle != nullptr) CloseHandle(handle);
    return name;
}

} // namespace

int threadsNamed(const std::string& wanted) {
    int count = 0;
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(all, &entry); more; more = Thread32Next(all, &entry))
        if (entry.th32OwnerProcessID == GetCurrentProcessId() &&
            nameOf(entry.th32ThreadID) == wideText(wanted))
            ++count;
    CloseHandle(all);
    return count;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/HungFile.h"

#include "platform/WideText_win32.h"

#include <cstring>

#include <windows.h>

namespace zarno::test::hungFile {
namespace {

bool isHung(HANDLE file) {
    wchar_t path[MAX_PATH] = {};
    if (GetFinalPathNameByHandleW(file, path, MAX_PATH, 0) == 0) return false;
    return std::wstring(path).ends_with(wideText(name));
}

BOOL WINAPI readFile(HANDLE file, void* to, DWORD count, DWORD* got, OVERLAPPED* at) {
    if (hangs && isHung(file)) wait();
    return ReadFile(file, to, count, got, at);
}

// Where a module keeps the address of a function that it imports.
ULONGLONG* importOf(HMODULE module, const char* function) {
    auto* base = reinterpret_cast<char*>(module);
    const auto* header =
        reinterpret_cast<IMAGE_NT_HEADERS*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const auto& imports = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
    for (; library->Name != 0; ++library) {
        const auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* addresses = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* import = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (std::strcmp(import->Name, function) == 0) return &addresses->u1.Function;
        }
    }
    return nullptr;
}

HMODULE moduleAt(const std::string& path) {
    return GetModuleHandleW(widePath(path).c_str());
}

} // namespace

void standBefore(const std::string& modulePath) {
    ULONGLONG* address = importOf(moduleAt(modulePath), "ReadFile");
    DWORD before = 0;
    VirtualProtect(address, sizeof *address, PAGE_READWRITE, &before);
    *address = reinterpret_cast<ULONGLONG>(&readFile);
    VirtualProtect(address, sizeof *address, before, &before);
}

bool isLoaded(const std::string& modulePath) {
    return moduleAt(modulePath) != nullptr;
}

} // namespace zarno::test::hungFile

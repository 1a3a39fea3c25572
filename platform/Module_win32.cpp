// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Module.h"

#include "platform/WideText_win32.h"

#include <filesystem>
#include <windows.h>

namespace zarno {
namespace {

const char anchor = 0; // an address inside this module

HMODULE thisModule(DWORD flags) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, reinterpret_cast<LPCWSTR>(&anchor),
                       &module);
    return module;
}

} // namespace

std::string modulePath() {
    const HMODULE module = thisModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const auto length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return utf8FromWide(path);
        }
        if (path.size() > 0x8000) return {}; // longer than any path
        path.resize(path.size() * 2);
    }
}

std::vector<std::string> modulePaths() {
    const auto loaded = modulePath();
    if (loaded.empty()) return {};
    std::error_code error;
    const std::filesystem::path path(widePath(loaded));
    const auto file = std::filesystem::canonical(path, error);
    if (error || file == path) return {loaded};
    return {loaded, utf8FromWide(file.wstring())};
}

ModulePin::ModulePin()
    : module_(thisModule(0)) {}

ModulePin::~ModulePin() {
    if (module_ != nullptr) FreeLibrary(static_cast<HMODULE>(module_));
}

void keepModuleForever() {
    thisModule(GET_MODULE_HANDLE_EX_FLAG_PIN);
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/SharedModule.h"

#include "platform/WideText_win32.h"

#include <windows.h>

namespace zarno {

std::unique_ptr<SharedModule> SharedModule::load(const std::string& path, std::string& error) {
    if (HMODULE handle = LoadLibraryW(widePath(path).c_str()))
        return std::unique_ptr<SharedModule>(new SharedModule(handle));
    error = "cannot load " + path + " (system error " + std::to_string(GetLastError()) + ")";
    return nullptr;
}

SharedModule::~SharedModule() {
    FreeLibrary(static_cast<HMODULE>(handle_));
}

void* SharedModule::symbol(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

} // namespace zarno

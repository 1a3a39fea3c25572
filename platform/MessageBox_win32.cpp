// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/MessageBox_win32.h"

#include "platform/WideText_win32.h"

#include <memory>

#include <windows.h>

namespace zarno {
namespace {

struct Box {
    std::wstring title, text;
    HMODULE module = nullptr;
};

// Gives the module back and ends the thread in one call: there may be no code of ours left to return to.
DWORD WINAPI show(void* parameter) {
    HMODULE module = nullptr;
    {
        const std::unique_ptr<Box> box(static_cast<Box*>(parameter));
        MessageBoxW(nullptr, box->text.c_str(), box->title.c_str(), MB_OK | MB_SETFOREGROUND);
        module = box->module;
    }
    FreeLibraryAndExitThread(module, 0);
}

} // namespace

void showMessageBox(std::string_view title, std::string_view text) {
    auto box = std::make_unique<Box>();
    box->title = wideText(title);
    box->text = wideText(text);
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&show),
                            &box->module))
        return;
    const HANDLE thread = CreateThread(nullptr, 0, show, box.get(), 0, nullptr);
    if (thread == nullptr) {
        FreeLibrary(box->module);
        return;
    }
    box.release();
    CloseHandle(thread);
}

} // namespace zarno

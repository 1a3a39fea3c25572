// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/EditorWindow.h"
#include "tools/vsthost/HostedPlugin.h"

#include <chrono>
#include <thread>

#include <windows.h>

namespace zarno {

void pumpMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

struct EditorWindow::Impl {
    explicit Impl(HostedPlugin& hosted)
        : plugin(hosted) {}
    ~Impl() {
        plugin.onResize = nullptr;
        plugin.closeEditor();
        if (window != nullptr) DestroyWindow(window);
    }

    static RECT outer(HostedPlugin::Size size) {
        RECT frame{0, 0, size.width, size.height};
        AdjustWindowRect(&frame, style, FALSE);
        return frame;
    }

    bool create(HostedPlugin::Size size) {
        WNDCLASSW kind{};
        kind.lpfnWndProc = DefWindowProcW;
        kind.hInstance = GetModuleHandleW(nullptr);
        kind.lpszClassName = L"ZarnoVstHost";
        RegisterClassW(&kind);
        const RECT frame = outer(size);
        window =
            CreateWindowW(kind.lpszClassName, L"Zarno Sampler Player", style, 0, 0, frame.right - frame.left,
                          frame.bottom - frame.top, nullptr, nullptr, kind.hInstance, nullptr);
        return window != nullptr;
    }

    bool resize(HostedPlugin::Size size) {
        const RECT frame = outer(size);
        return SetWindowPos(window, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
                            SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE) != 0;
    }

    static constexpr DWORD style = (WS_OVERLAPPEDWINDOW & ~(WS_THICKFRAME | WS_MAXIMIZEBOX)) | WS_VISIBLE;
    HostedPlugin& plugin;
    HWND window = nullptr;
};

EditorWindow::EditorWindow(std::unique_ptr<Impl> impl)
    : impl_(std::move(impl)) {}
EditorWindow::~EditorWindow() = default;

std::unique_ptr<EditorWindow> EditorWindow::open(HostedPlugin& plugin, std::string& error) {
    auto impl = std::make_unique<Impl>(plugin);
    const auto size = plugin.editorSize();
    if (size.width <= 0 || size.height <= 0) {
        error = "the plug-in has no editor";
        return nullptr;
    }
    if (!impl->create(size)) {
        error = "no window can be made";
        return nullptr;
    }
    plugin.onResize = [raw = impl.get()](HostedPlugin::Size wanted) { return raw->resize(wanted); };
    if (!plugin.openEditor(impl->window)) {
        error = "the editor did not open";
        return nullptr;
    }
    return std::unique_ptr<EditorWindow>(new EditorWindow(std::move(impl)));
}

void EditorWindow::run(double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (Clock::now() < end) {
        impl_->plugin.idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

Picture EditorWindow::picture() const {
    const HWND editor = GetWindow(impl_->window, GW_CHILD);
    RECT area;
    if (editor == nullptr || !GetClientRect(editor, &area)) return {};
    Picture picture{area.right, area.bottom, {}};
    BITMAPINFO form{};
    form.bmiHeader = {sizeof form.bmiHeader, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HDC screen = GetDC(editor), memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(screen, &form, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ former = SelectObject(memory, bitmap);
    const bool isCopied = BitBlt(memory, 0, 0, picture.width, picture.height, screen, 0, 0, SRCCOPY) != 0;
    GdiFlush();
    const auto* pixel = static_cast<const std::uint8_t*>(bits);
    for (int i = 0; isCopied && bits != nullptr && i < picture.width * picture.height; ++i, pixel += 4)
        picture.pixels.insert(picture.pixels.end(), {pixel[2], pixel[1], pixel[0]});
    SelectObject(memory, former);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(editor, screen);
    return picture.pixels.empty() ? Picture{} : picture;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/NativeWindow.h"

#include <windows.h>

namespace zarno {

void pumpMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

namespace {

constexpr DWORD style = (WS_OVERLAPPEDWINDOW & ~(WS_THICKFRAME | WS_MAXIMIZEBOX)) | WS_VISIBLE;

SIZE withFrame(HostedPlugin::Size size) {
    RECT frame{0, 0, size.width, size.height};
    AdjustWindowRect(&frame, style, FALSE);
    return {frame.right - frame.left, frame.bottom - frame.top};
}

class Win32Window : public NativeWindow {
  public:
    explicit Win32Window(HWND window)
        : window_(window) {}
    ~Win32Window() override { DestroyWindow(window_); }

    void* handle() const override { return window_; }

    bool resize(HostedPlugin::Size size) override {
        const SIZE outer = withFrame(size);
        return SetWindowPos(window_, nullptr, 0, 0, outer.cx, outer.cy,
                            SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE) != 0;
    }

    // The plug-in's idle call pumps all messages of the thread, this window's among them.
    void handleEvents() override {}

    Picture picture() const override {
        const HWND editor = GetWindow(window_, GW_CHILD);
        RECT area;
        if (editor == nullptr || !GetClientRect(editor, &area)) return {};
        Picture picture{area.right, area.bottom, {}};
        BITMAPINFO form{};
        form.bmiHeader = {
            sizeof form.bmiHeader, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
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

  private:
    HWND window_;
};

} // namespace

std::unique_ptr<NativeWindow> NativeWindow::create(HostedPlugin::Size size) {
    WNDCLASSW kind{};
    kind.lpfnWndProc = DefWindowProcW;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.lpszClassName = L"ZarnoVstHost";
    RegisterClassW(&kind);
    const SIZE outer = withFrame(size);
    const HWND window = CreateWindowW(kind.lpszClassName, L"Zarno Sampler Player", style, 0, 0, outer.cx,
                                      outer.cy, nullptr, nullptr, kind.hInstance, nullptr);
    return window == nullptr ? nullptr : std::make_unique<Win32Window>(window);
}

} // namespace zarno

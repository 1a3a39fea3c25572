// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/EditorWindow.h"
#include "tools/vsthost/HostedPlugin.h"

#include <chrono>
#include <thread>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace zarno {

// Elsewhere a window's messages are the thread's; here the plug-in has a connection of its own.
void pumpMessages() {}

namespace {

// Without a window manager some requests of the plug-in's end in an error, which the library's own handler
// would end the process for.
int ignoreError(Display*, XErrorEvent*) {
    return 0;
}

} // namespace

struct EditorWindow::Impl {
    explicit Impl(HostedPlugin& hosted)
        : plugin(hosted) {}
    ~Impl() {
        plugin.onResize = nullptr;
        plugin.closeEditor();
        if (window != 0) XDestroyWindow(display, window);
        if (display != nullptr) XCloseDisplay(display);
    }

    bool create(HostedPlugin::Size size) {
        display = XOpenDisplay(nullptr);
        if (display == nullptr) return false;
        XSetErrorHandler(ignoreError);
        window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0,
                                     static_cast<unsigned>(size.width), static_cast<unsigned>(size.height), 0,
                                     0, BlackPixel(display, DefaultScreen(display)));
        XStoreName(display, window, "Zarno Sampler Player");
        XMapWindow(display, window);
        XSync(display, False);
        return true;
    }

    bool resize(HostedPlugin::Size size) {
        XResizeWindow(display, window, static_cast<unsigned>(size.width), static_cast<unsigned>(size.height));
        XSync(display, False);
        return true;
    }

    HostedPlugin& plugin;
    Display* display = nullptr;
    Window window = 0;
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
        error = "there is no display";
        return nullptr;
    }
    plugin.onResize = [raw = impl.get()](HostedPlugin::Size wanted) { return raw->resize(wanted); };
    if (!plugin.openEditor(reinterpret_cast<void*>(impl->window))) {
        error = "the editor did not open";
        return nullptr;
    }
    return std::unique_ptr<EditorWindow>(new EditorWindow(std::move(impl)));
}

void EditorWindow::run(double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (Clock::now() < end) {
        while (XPending(impl_->display) > 0) {
            XEvent event;
            XNextEvent(impl_->display, &event);
        }
        impl_->plugin.idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

Picture EditorWindow::picture() const {
    XWindowAttributes shown;
    if (XGetWindowAttributes(impl_->display, impl_->window, &shown) == 0) return {};
    const auto width = static_cast<unsigned>(shown.width), height = static_cast<unsigned>(shown.height);
    XImage* image = XGetImage(impl_->display, impl_->window, 0, 0, width, height, AllPlanes, ZPixmap);
    if (image == nullptr) return {};
    Picture picture{shown.width, shown.height, {}};
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const unsigned long pixel = XGetPixel(image, x, y);
            for (const int shift : {16, 8, 0})
                picture.pixels.push_back(static_cast<std::uint8_t>(pixel >> shift));
        }
    XDestroyImage(image);
    return picture;
}

} // namespace zarno

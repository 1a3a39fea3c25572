// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/NativeWindow.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace zarno {

// Elsewhere a window's messages are the thread's; here the plug-in has a connection of its own.
void pumpMessages() {}

namespace {

class X11Window : public NativeWindow {
  public:
    X11Window(Display* display, HostedPlugin::Size size)
        : display_(display)
        , window_(XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0,
                                      static_cast<unsigned>(size.width), static_cast<unsigned>(size.height),
                                      0, 0, BlackPixel(display, DefaultScreen(display)))) {
        XStoreName(display_, window_, "Zarno Sampler Player");
        XMapWindow(display_, window_);
        XSync(display_, False);
    }

    ~X11Window() override {
        XDestroyWindow(display_, window_);
        XCloseDisplay(display_);
    }

    void* handle() const override { return reinterpret_cast<void*>(window_); }

    bool resize(HostedPlugin::Size size) override {
        XResizeWindow(display_, window_, static_cast<unsigned>(size.width),
                      static_cast<unsigned>(size.height));
        XSync(display_, False);
        return true;
    }

    void handleEvents() override {
        while (XPending(display_) > 0) {
            XEvent event;
            XNextEvent(display_, &event);
        }
    }

    Picture picture() const override {
        XWindowAttributes shown;
        if (XGetWindowAttributes(display_, window_, &shown) == 0) return {};
        const auto width = static_cast<unsigned>(shown.width), height = static_cast<unsigned>(shown.height);
        XImage* image = XGetImage(display_, window_, 0, 0, width, height, AllPlanes, ZPixmap);
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

  private:
    Display* display_;
    Window window_;
};

} // namespace

std::unique_ptr<NativeWindow> NativeWindow::create(HostedPlugin::Size size) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) return nullptr;
    return std::make_unique<X11Window>(display, size);
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/SystemDesktop.h"

#include <X11/Xlib.h>
#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>

namespace zarno {

// A connection of our own: JUCE's is not public. The library is loaded at run time, as JUCE does.
struct SystemDesktop::System {
    System() {
        library = dlopen("libX11.so.6", RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) return;
        if (const auto open = find<decltype(&XOpenDisplay)>("XOpenDisplay")) display = open(nullptr);
    }
    ~System() {
        if (display != nullptr)
            if (const auto close = find<decltype(&XCloseDisplay)>("XCloseDisplay")) close(display);
        if (library != nullptr) dlclose(library);
    }
    template <typename Function>
    Function find(const char* name) const {
        return reinterpret_cast<Function>(dlsym(library, name));
    }

    void* library = nullptr;
    Display* display = nullptr;
};

SystemDesktop::SystemDesktop()
    : system_(std::make_unique<System>()) {}
SystemDesktop::~SystemDesktop() = default;

bool SystemDesktop::isViewable(void* handle) const {
    if (system_->display == nullptr || handle == nullptr) return true;
    const auto attributesOf = system_->find<decltype(&XGetWindowAttributes)>("XGetWindowAttributes");
    XWindowAttributes attributes;
    return attributesOf == nullptr ||
           attributesOf(system_->display, reinterpret_cast<Window>(handle), &attributes) == 0 ||
           attributes.map_state == IsViewable;
}

double SystemDesktop::desktopScale() const {
    double scale = 1.0;
    if (const char* gdk = std::getenv("GDK_SCALE")) scale = std::max(scale, std::strtod(gdk, nullptr));
    if (system_->display != nullptr)
        if (const auto valueOf = system_->find<decltype(&XGetDefault)>("XGetDefault"))
            if (const char* dpi = valueOf(system_->display, "Xft", "dpi"))
                scale = std::max(scale, std::strtod(dpi, nullptr) / 96.0);
    return std::min(scale, 4.0);
}

} // namespace zarno

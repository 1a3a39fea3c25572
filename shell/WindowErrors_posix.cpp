// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/WindowErrors.h"

#include "platform/Module.h"

#define JUCE_GUI_BASICS_INCLUDE_XHEADERS 1
#include <juce_gui_basics/juce_gui_basics.h>

#include <atomic>
#include <mutex>

namespace zarno {
namespace {

// Xlib has one error handler for the whole process; the default one ends the process.
std::mutex mutex; // guards all below except what the handler reads
int living = 0;
bool installed = false;
std::atomic<XErrorHandler> before{nullptr};

int handleError(Display* display, XErrorEvent* error) {
    const auto* ours = juce::XWindowSystem::getInstanceWithoutCreating();
    if (ours != nullptr && display == ours->getDisplay()) return 0;
    const XErrorHandler next = before;
    return next != nullptr ? next(display, error) : 0;
}

XErrorHandler install(XErrorHandler handler) {
    return juce::X11Symbols::getInstance()->xSetErrorHandler(handler);
}

} // namespace

WindowErrors::WindowErrors() {
    const std::lock_guard hold(mutex);
    ++living;
    if (installed) return;
    before = install(handleError);
    installed = true;
}

WindowErrors::~WindowErrors() {
    const std::lock_guard hold(mutex);
    if (--living > 0) return;
    const XErrorHandler last = install(before);
    installed = last != handleError;
    if (!installed) return;
    // Another handler was installed after ours and may call ours at any time.
    install(last);
    keepModuleForever();
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/realtime/EditorFingers.h"

namespace zarno::test {
namespace {

int ignoreErrors(Display*, XErrorEvent*) { // a window may go while it is clicked at
    return 0;
}

} // namespace

EditorFingers::EditorFingers()
    : display_(XOpenDisplay(nullptr)) {
    XSetErrorHandler(ignoreErrors);
}

EditorFingers::~EditorFingers() {
    if (display_ != nullptr) XCloseDisplay(display_);
}

// The windows without children: the editor is one inside the host's.
void EditorFingers::collect(Window window, std::vector<Window>& found) {
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display_, window, &root, &parent, &children, &count) == 0) return;
    if (count == 0) found.push_back(window);
    for (unsigned i = 0; i < count; ++i)
        collect(children[i], found);
    if (children != nullptr) XFree(children);
}

void EditorFingers::press(Window window, unsigned button, int x, int y, int toX, int toY) {
    XEvent event{};
    event.xbutton = {ButtonPress, 0,           True, display_, window, DefaultRootWindow(display_),
                     0,           CurrentTime, x,    y,        x,      y,
                     0,           button,      True};
    XSendEvent(display_, window, True, ButtonPressMask, &event);
    XEvent move{};
    move.xmotion = {
        MotionNotify, 0,   True, display_,     window, DefaultRootWindow(display_), 0, CurrentTime, toX, toY,
        toX,          toY, 0,    NotifyNormal, True};
    move.xmotion.state = button == 1 ? Button1Mask : 0;
    XSendEvent(display_, window, True, PointerMotionMask, &move);
    event.xbutton.type = ButtonRelease;
    event.xbutton.x = toX;
    event.xbutton.y = toY;
    event.xbutton.state = button == 1 ? Button1Mask : 0;
    XSendEvent(display_, window, True, ButtonReleaseMask, &event);
}

void EditorFingers::move() {
    if (display_ == nullptr) return;
    std::vector<Window> windows;
    collect(DefaultRootWindow(display_), windows);
    const auto below = [this](int count) {
        return static_cast<int>(chance_() % static_cast<unsigned>(count));
    };
    for (const Window window : windows) {
        XWindowAttributes size{};
        if (XGetWindowAttributes(display_, window, &size) == 0 || size.map_state != IsViewable) continue;
        if (size.width < 200 || size.height < 100) continue;
        const int height = size.height - 40;
        press(window, chance_() % 5 == 0 ? 4u + chance_() % 2 : 1u, below(size.width), below(height),
              below(size.width), below(height));
    }
    XFlush(display_);
}

} // namespace zarno::test

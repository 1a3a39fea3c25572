// SPDX-License-Identifier: GPL-3.0-or-later
// The one handler of errors that the X library has for a whole process.
#include "tests/host/HostRig.h"
#include "tools/vsthost/HostWindow.h"

#include <gtest/gtest.h>

#include <X11/Xlib.h>

namespace zarno::test {
namespace {

int toTheHost = 0;

int countForTheHost(Display*, XErrorEvent*) {
    return ++toTheHost;
}

XErrorHandler ours = nullptr;

int passOn(Display* display, XErrorEvent* error) {
    return ours(display, error);
}

TEST(WindowOnScreen, LeavesTheHostsErrorsToTheHost) {
    HostRig rig;
    rig.addInstrument("level.zse", levelInstrument("Level").bytes());
    const XErrorHandler usual = XSetErrorHandler(countForTheHost);
    Display* display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    const auto failAndCount = [&] {
        XMapWindow(display, 1); // there is none
        XSync(display, False);
        return toTheHost;
    };
    std::string error;
    auto plugin = rig.loadActive();
    auto first = HostWindow::open(*plugin, error), second = HostWindow::open(*plugin, error);
    EXPECT_EQ(failAndCount(), 1) << "while it is open";
    first.reset();
    second.reset();
    EXPECT_EQ(failAndCount(), 2);
    plugin.reset();
    EXPECT_EQ(XSetErrorHandler(countForTheHost), countForTheHost) << "as it was";

    plugin = rig.loadActive();
    first = HostWindow::open(*plugin, error);
    ours = XSetErrorHandler(passOn); // another plug-in's, which passes errors on to ours for ever
    EXPECT_NE(ours, countForTheHost);
    first.reset();
    plugin.reset();
    EXPECT_EQ(failAndCount(), 3) << "the module has stayed";
    XSetErrorHandler(usual);
    XCloseDisplay(display);
}

} // namespace
} // namespace zarno::test

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <X11/Xlib.h>

#include <random>
#include <vector>

namespace zarno::test {

/// Somebody who clicks, drags and turns the wheel at random places of every window that the screen shows.
class EditorFingers {
  public:
    EditorFingers();
    ~EditorFingers();
    /// Leaves out the bar at the bottom, whose menus would cover the rest.
    void move();

  private:
    void collect(Window window, std::vector<Window>& found);
    void press(Window window, unsigned button, int x, int y, int toX, int toY);

    Display* display_;
    std::mt19937 chance_{3};
};

} // namespace zarno::test

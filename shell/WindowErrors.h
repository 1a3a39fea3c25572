// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

/// While it lives, what the window system refuses our window does not end the host's process: a host may
/// destroy its own window, and ours with it, before it closes the editor. Errors of other connections go
/// where they went before. For the thread that opens and closes editors.
class WindowErrors {
  public:
    WindowErrors();
    ~WindowErrors();
    WindowErrors(const WindowErrors&) = delete;
    WindowErrors& operator=(const WindowErrors&) = delete;
};

} // namespace zarno

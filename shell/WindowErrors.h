// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

/// While it lives, X errors on our display connection are ignored. A host may destroy its own window, and
/// ours with it, before it closes the editor; the default X error handler would then end the host's process.
/// Errors of other connections go to the previous handler. [the thread that opens and closes editors]
class WindowErrors {
  public:
    WindowErrors();
    ~WindowErrors();
    WindowErrors(const WindowErrors&) = delete;
    WindowErrors& operator=(const WindowErrors&) = delete;
};

} // namespace zarno

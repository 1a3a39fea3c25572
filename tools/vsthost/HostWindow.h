// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zarno {

class HostedPlugin;
class NativeWindow;

/// Rows from top to bottom, three bytes a pixel: red, green, blue.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> pixels;
};

/// A window of the host's with the plug-in's editor in it.
class HostWindow {
  public:
    /// Null when there is no display or the plug-in opens no editor; `error` then says why.
    static std::unique_ptr<HostWindow> open(HostedPlugin& plugin, std::string& error);
    ~HostWindow();

    /// Closes the editor and opens it again in the same window, at once. False when it does not open.
    bool reopen();

    /// Runs the event loop of the window and the plug-in for this long.
    void run(double seconds);

    /// What the screen shows of the editor now. Empty when it cannot be read.
    Picture picture() const;

  private:
    HostWindow(HostedPlugin& plugin, std::unique_ptr<NativeWindow> window);
    HostedPlugin& plugin_;
    std::unique_ptr<NativeWindow> window_;
};

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zarno {

class HostedPlugin;

/// Rows from top to bottom, three bytes a pixel: red, green, blue.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> pixels;
};

/// A window of the host's with the plug-in's editor in it.
class EditorWindow {
  public:
    /// Null when there is no display or the plug-in opens no editor; `error` then says why.
    static std::unique_ptr<EditorWindow> open(HostedPlugin& plugin, std::string& error);
    ~EditorWindow();

    /// Runs the event loop of the window and the plug-in for this long.
    void run(double seconds);

    /// What the screen shows of the editor now. Empty when it cannot be read.
    Picture picture() const;

  private:
    struct Impl;
    explicit EditorWindow(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

} // namespace zarno

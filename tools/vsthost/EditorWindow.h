// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

namespace zarno {

class HostedPlugin;

/// A window of the host's with the plug-in's editor in it.
class EditorWindow {
  public:
    /// Null when there is no display or the plug-in opens no editor; `error` then says why.
    static std::unique_ptr<EditorWindow> open(HostedPlugin& plugin, std::string& error);
    ~EditorWindow();

    /// Runs the event loop of the window and the plug-in for this long.
    void run(double seconds);

  private:
    struct Impl;
    explicit EditorWindow(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

} // namespace zarno

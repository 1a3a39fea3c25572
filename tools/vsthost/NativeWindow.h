// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/vsthost/HostWindow.h"
#include "tools/vsthost/HostedPlugin.h"

#include <memory>

namespace zarno {

/// A bare window of the window system's, on its screen until it is destroyed. Its twins are in
/// NativeWindow_win32.cpp and NativeWindow_x11.cpp.
class NativeWindow {
  public:
    /// The size is that of the area inside the frame. Null when there is no display.
    static std::unique_ptr<NativeWindow> create(HostedPlugin::Size size);
    virtual ~NativeWindow() = default;

    virtual void* handle() const = 0; ///< what the plug-in is given to open in
    virtual bool resize(HostedPlugin::Size size) = 0;
    virtual void handleEvents() = 0; ///< those that have arrived; does not wait
    virtual Picture picture() const = 0;
};

} // namespace zarno

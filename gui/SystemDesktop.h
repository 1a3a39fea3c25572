// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

namespace zarno {

// What JUCE does not say of the system's windows. Message thread.
class SystemDesktop {
  public:
    SystemDesktop();
    ~SystemDesktop();

    // False when the window, or one that it lies in, is hidden. `handle`: as a peer gives it, may be null.
    bool isViewable(void* handle) const;

    // The user's wish for the size of everything: 1 is 96 dots an inch. On Linux from GDK_SCALE and Xft.dpi; JUCE
    // follows the system elsewhere, and this is 1.
    double desktopScale() const;

  private:
    struct System;
    std::unique_ptr<System> system_;
};

} // namespace zarno

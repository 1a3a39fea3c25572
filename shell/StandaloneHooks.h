// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace zarno {

/// What the program without a host offers its window. Empty in a host. Set once by the program, before any window;
/// message thread.
struct StandaloneHooks {
    static inline std::function<bool()> lacksAudioDevice;
    static inline std::function<void()> showAudioSettings;
};

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Included by force before JUCE's plug-in wrapper, and by our own entry: the wrapper defines and exports a function
// VSTPluginMain, which is the name our entry needs.
#define VSTPluginMain zarnoWrapperMain

// On Windows the wrapper's mark for export would win over the linker's list; as this attribute it says nothing.
#if defined(_WIN32)
#define dllexport unused
#endif

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

// The plug-in interface, in a namespace of its own as in JUCE. For the module's entry only,
// where the wrapper's force-included names must not reach it.
#undef VSTPluginMain
#undef dllexport

namespace Vst2 {
#include "pluginterfaces/vst2.x/aeffectx.h"
} // namespace Vst2

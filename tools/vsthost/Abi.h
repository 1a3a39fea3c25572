// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

// The interface between host and module, in a namespace of its own as the framework has it.
namespace Vst2 {
#include "pluginterfaces/vst2.x/aeffectx.h"
} // namespace Vst2

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/Vst2Interface.h"

namespace zarno {

/// What a host asks, as the interface hands it over.
struct HostCall {
    Vst2::VstInt32 opcode, index;
    Vst2::VstIntPtr value;
    void* pointer;
    float option;
};

/// False for calls that the framework's wrapper would follow into a crash: without a place for the answer, or
/// with a rate or scale that is none. A pointer that points nowhere cannot be told.
bool makesSense(const HostCall& call);

} // namespace zarno

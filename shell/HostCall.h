// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/Vst2Interface.h"

namespace zarno {

/// The arguments of one dispatcher call.
struct HostCall {
    Vst2::VstInt32 opcode, index;
    Vst2::VstIntPtr value;
    void* pointer;
    float option;
};

/// False for calls that crash JUCE's wrapper: a null pointer where it writes its answer, or a rate or scale
/// that is not a positive number. Dangling pointers cannot be detected.
bool isValidHostCall(const HostCall& call);

} // namespace zarno

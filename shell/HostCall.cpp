// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/HostCall.h"

namespace zarno {
namespace {

// A vendor-specific call that JUCE's wrapper implements beyond the interface, by its index.
constexpr Vst2::VstInt32 setContentScale = 0x50726553; // "PreS"
constexpr Vst2::VstInt32 showParameter = Vst2::effGetParamDisplay;

bool isScale(float factor) {
    return factor >= 0.1f && factor <= 10.0f;
}

} // namespace

bool isValidHostCall(const HostCall& call) {
    switch (call.opcode) {
    case Vst2::effSetProgramName:
    case Vst2::effGetProgramName:
    case Vst2::effGetProgramNameIndexed:
    case Vst2::effGetParamLabel:
    case Vst2::effGetParamDisplay:
    case Vst2::effGetParamName:
    case Vst2::effString2Parameter:
    case Vst2::effEditGetRect:
    case Vst2::effEditOpen:
    case Vst2::effGetChunk:
    case Vst2::effSetChunk:
    case Vst2::effProcessEvents:
    case Vst2::effGetInputProperties:
    case Vst2::effGetOutputProperties:
    case Vst2::effGetEffectName:
    case Vst2::effGetProductString:
    case Vst2::effGetVendorString:
    case Vst2::effCanDo:
        return call.pointer != nullptr;
    case Vst2::effGetSpeakerArrangement:
        return call.pointer != nullptr && call.value != 0;
    case Vst2::effSetSampleRate:
        return call.option > 0.0f && call.option <= 1e7f;
    case Vst2::effVendorSpecific:
        if (call.index == setContentScale) return isScale(call.option);
        return call.index != showParameter || call.pointer != nullptr;
    default:
        return true;
    }
}

} // namespace zarno

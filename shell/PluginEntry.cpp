// SPDX-License-Identifier: GPL-3.0-or-later
// The module's entry. JUCE's VST2 wrapper does the work under another name; this entry corrects what it tells the
// host.
#include "engine/VoiceKernel.h"
#include "platform/DefaultArithmetic.h"
#include "shell/CZSP.h"
#include "shell/EntryOpcodes.h"
#include "shell/HostCall.h"
#include "shell/OpenEffects.h"
#include "shell/PluginFilter.h"

#include <optional>

#ifdef _WIN32
#define ZARNO_EXPORT extern "C" __declspec(dllexport)
#else
#define ZARNO_EXPORT extern "C" __attribute__((visibility("default")))
#endif

extern "C" Vst2::AEffect* zarnoWrapperMain(Vst2::audioMasterCallback host);

namespace zarno {
namespace {

constexpr Vst2::VstInt32 hostVersion = JucePlugin_VersionCode; // 131333 for 2.1.5
constexpr std::size_t longestProgramName = 24, longestText = 64;

OpenEffects& effects() {
    static OpenEffects instance;
    return instance;
}

Vst2::VstIntPtr giveText(void* destination, const juce::String& text, std::size_t longest) {
    text.copyToUTF8(static_cast<char*>(destination), longest + 1);
    return text.isNotEmpty() ? 1 : 0;
}

juce::String textOr(const std::string& text, const char* fallback) {
    return juce::String::fromUTF8(text.empty() ? fallback : text.c_str());
}

const VoiceKernels* kernelsOf(std::uint32_t choice) {
    if (choice == entryOpcode::avx2Kernels && avx2Kernels() != nullptr) return avx2Kernels();
    return choice == entryOpcode::noKernels ? nullptr : &sse2Kernels();
}

Vst2::VstIntPtr vendorSpecific(CZSP& processor, Vst2::VstIntPtr operation, void* pointer) {
    const auto number = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
    switch (operation) {
    case entryOpcode::seedRandom:
        processor.seedRandom(number);
        return 1;
    case entryOpcode::useKernels: {
        const juce::ScopedLock hold(processor.getCallbackLock());
        processor.engine().useKernels(kernelsOf(number));
        return 1;
    }
    case entryOpcode::playLive:
        processor.playLive();
        return 1;
    case entryOpcode::playingVoices:
        return processor.engine().playingVoices();
    default:
        return 0;
    }
}

Vst2::VstIntPtr giveChunk(OpenEffect& open, void* destination) {
    juce::MemoryBlock& chunk = open.freshChunk();
    *static_cast<void**>(destination) = chunk.getData();
    return static_cast<Vst2::VstIntPtr>(chunk.getSize());
}

// The calls that JUCE's wrapper answers wrongly or not at all; none for all others.
std::optional<Vst2::VstIntPtr> answer(OpenEffect& open, Vst2::VstInt32 opcode, Vst2::VstInt32 index,
                                      Vst2::VstIntPtr value, void* pointer) {
    CZSP& processor = open.processor;
    switch (opcode) {
    case Vst2::effGetChunk:
        return giveChunk(open, pointer);
    case Vst2::effSetProgram:
        processor.setCurrentProgram(static_cast<int>(value));
        return 0;
    case Vst2::effSetBypass: // JUCE's own flag is not atomic
        processor.setBypassed(value != 0);
        return 1;
    case Vst2::effGetProgram:
        return processor.getCurrentProgram();
    case Vst2::effGetProgramName:
        return giveText(pointer, processor.getProgramName(processor.getCurrentProgram()), longestProgramName);
    case Vst2::effGetProgramNameIndexed:
        return giveText(pointer, processor.getProgramName(index), longestProgramName);
    case Vst2::effGetEffectName:
    case Vst2::effGetProductString:
        return giveText(pointer, textOr(processor.identity().packTitle, "Zarno Sampler Player"), longestText);
    case Vst2::effGetVendorString:
        return giveText(pointer, textOr(processor.identity().vendor, "Zarno"), longestText);
    case Vst2::effVendorSpecific:
        if (index == entryOpcode::magic) return vendorSpecific(processor, value, pointer);
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

void nameChannel(CZSP& processor, int index, Vst2::VstPinProperties& pin) {
    const auto name = processor.getOutputChannelName(index);
    name.copyToUTF8(pin.label, sizeof pin.label);
    name.copyToUTF8(pin.shortLabel, sizeof pin.shortLabel);
}

Vst2::VstIntPtr callWrapper(OpenEffect& open, Vst2::AEffect* effect, const HostCall& call) {
    return open.wrapper(effect, call.opcode, call.index, call.value, call.pointer, call.option);
}

// A bounce that waits for the disk is not waited for.
void closeGate(OpenEffect& open) {
    const ZInstrument::Hurry hurry(open.processor.engine());
    open.gate.close();
}

// What the wrapper does while nobody may be processing.
Vst2::VstIntPtr callWithClosedGate(OpenEffect& open, Vst2::AEffect* effect, const HostCall& call) {
    const bool wasClosed = open.gate.isClosed();
    closeGate(open);
    if (call.opcode == Vst2::effSetBlockSize) open.gate.reserve(static_cast<int>(call.value));
    const auto result = callWrapper(open, effect, call);
    const bool stays = call.opcode == Vst2::effMainsChanged ? call.value == 0 : wasClosed;
    if (!stays) open.gate.open();
    return result;
}

Vst2::VstIntPtr close(Vst2::AEffect* effect, const HostCall& call) {
    const auto open = effects().remove(effect);
    if (open == nullptr) return 0;
    closeGate(*open);
    open->processor.flushMessages();
    if (open->windowErrors) callWrapper(*open, effect, {Vst2::effEditClose, 0, 0, nullptr, 0.0f});
    open->windowErrors.reset(); // while JUCE is still connected to the display
    return callWrapper(*open, effect, call);
}

// JUCE may still ask about the window after the editor is closed, when the host has destroyed it.
Vst2::VstIntPtr openEditor(OpenEffect& open, Vst2::AEffect* effect, const HostCall& call) {
    if (!open.windowErrors) open.windowErrors.emplace();
    return callWrapper(open, effect, call);
}

Vst2::VstIntPtr sendEvents(OpenEffect& open, Vst2::AEffect* effect, const HostCall& call) {
    if (!open.gate.enter()) return 0;
    const auto result = callWrapper(open, effect, call);
    open.gate.leave();
    return result;
}

Vst2::VstIntPtr dispatch(Vst2::AEffect* effect, Vst2::VstInt32 opcode, Vst2::VstInt32 index,
                         Vst2::VstIntPtr value, void* pointer, float option) {
    const DefaultArithmetic scopedFpu;
    const HostCall call{opcode, index, value, pointer, option};
    OpenEffect* open = effects().find(effect);
    if (open == nullptr || !isValidHostCall(call)) return 0;
    switch (opcode) {
    case Vst2::effProcessEvents:
        return sendEvents(*open, effect, call);
    case Vst2::effMainsChanged:
    case Vst2::effSetBlockSize:
        return callWithClosedGate(*open, effect, call);
    case Vst2::effEditOpen:
        return openEditor(*open, effect, call);
    case Vst2::effClose:
        return close(effect, call);
    }
    if (const auto own = answer(*open, opcode, index, value, pointer)) return *own;
    const auto result = callWrapper(*open, effect, call);
    if (opcode == Vst2::effGetOutputProperties && result != 0)
        nameChannel(open->processor, index, *static_cast<Vst2::VstPinProperties*>(pointer));
    return result;
}

// The wrapper asks only when it is turned on, but hosts begin a bounce without turning anything off. A host that
// does not know the question answers 0: then the wrapper's answer stays.
void takeProcessLevel(OpenEffect& open, Vst2::AEffect* effect) {
    if (!open.gate.enter()) return;
    const auto level = open.host(effect, Vst2::audioMasterGetCurrentProcessLevel, 0, 0, nullptr, 0.0f);
    const bool offline = level == Vst2::kVstProcessLevelOffline;
    if (level != 0 && offline != open.processor.engine().isOffline()) open.processor.setNonRealtime(offline);
    open.gate.leave();
}

void process(Vst2::AEffect* effect, float**, float** outputs, Vst2::VstInt32 frames) {
    const DefaultArithmetic scopedFpu;
    OpenEffect* open = effects().find(effect);
    if (open == nullptr) return;
    takeProcessLevel(*open, effect);
    open->gate.process(outputs, frames);
}

} // namespace
} // namespace zarno

ZARNO_EXPORT Vst2::AEffect* VSTPluginMain(Vst2::audioMasterCallback host) {
    using namespace zarno;
    const DefaultArithmetic scopedFpu;
    takeCreatedProcessor();
    Vst2::AEffect* effect = zarnoWrapperMain(host);
    CZSP* processor = takeCreatedProcessor();
    if (effect == nullptr || processor == nullptr) return effect;
    effects().add(*effect, *processor, host);
    effect->dispatcher = dispatch;
    effect->processReplacing = process;
    effect->uniqueID = static_cast<Vst2::VstInt32>(processor->identity().uniqueId);
    effect->version = hostVersion;
    effect->numPrograms = 0;
    effect->numInputs = 0;
    effect->numOutputs = 2;
    effect->initialDelay = 0;
    effect->flags &= ~Vst2::effFlagsNoSoundInStop;
    return effect;
}

// SPDX-License-Identifier: GPL-3.0-or-later
// The one symbol a host looks for. The framework's wrapper does the work; its own entry goes by another name.
// Ours stands before it and puts right what hosts are told.
#include "shell/CZSP.h"
#include "shell/EntryOpcodes.h"
#include "shell/PluginFilter.h"

#include <map>
#include <mutex>
#include <optional>

#undef VSTPluginMain
#undef dllexport

namespace Vst2 {
#include "pluginterfaces/vst2.x/aeffectx.h"
}

#ifdef _WIN32
#define ZARNO_EXPORT extern "C" __declspec(dllexport)
#else
#define ZARNO_EXPORT extern "C" __attribute__((visibility("default")))
#endif

extern "C" Vst2::AEffect* zarnoWrapperMain(Vst2::audioMasterCallback host);

namespace zarno {
namespace {

constexpr Vst2::VstInt32 hostVersion = 0x20105; // 131333
constexpr std::size_t longestProgramName = 24, longestText = 64;

// Which processor stands behind which effect. The effect's own fields belong to the wrapper and the host.
class Effects {
  public:
    void add(Vst2::AEffect* effect, CZSP* processor, Vst2::AEffectDispatcherProc wrapper) {
        const std::lock_guard hold(lock_);
        processors_[effect] = processor;
        wrapper_ = wrapper;
    }
    void remove(Vst2::AEffect* effect) {
        const std::lock_guard hold(lock_);
        processors_.erase(effect);
    }
    CZSP* find(Vst2::AEffect* effect) {
        const std::lock_guard hold(lock_);
        const auto found = processors_.find(effect);
        return found == processors_.end() ? nullptr : found->second;
    }
    // The same one for every effect of a module.
    Vst2::AEffectDispatcherProc wrapper() const { return wrapper_; }

  private:
    std::mutex lock_;
    std::map<Vst2::AEffect*, CZSP*> processors_;
    std::atomic<Vst2::AEffectDispatcherProc> wrapper_{nullptr};
};

Effects& effects() {
    static Effects instance;
    return instance;
}

Vst2::VstIntPtr giveText(void* destination, const juce::String& text, std::size_t longest) {
    if (destination == nullptr) return 0;
    text.copyToUTF8(static_cast<char*>(destination), longest + 1);
    return text.isNotEmpty() ? 1 : 0;
}

juce::String textOr(const std::string& text, const char* fallback) {
    return juce::String::fromUTF8(text.empty() ? fallback : text.c_str());
}

Vst2::VstIntPtr vendorSpecific(CZSP& processor, Vst2::VstIntPtr operation, void* pointer) {
    if (operation != entryOpcode::seedRandom) return 0;
    processor.seedRandom(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer)));
    return 1;
}

// What the wrapper would answer wrongly or not at all; none for everything else.
std::optional<Vst2::VstIntPtr> answer(CZSP& processor, Vst2::VstInt32 opcode, Vst2::VstInt32 index,
                                      Vst2::VstIntPtr value, void* pointer) {
    switch (opcode) {
    case Vst2::effSetProgram:
        processor.setCurrentProgram(static_cast<int>(value));
        return 0;
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

Vst2::VstIntPtr dispatch(Vst2::AEffect* effect, Vst2::VstInt32 opcode, Vst2::VstInt32 index,
                         Vst2::VstIntPtr value, void* pointer, float option) {
    const auto wrapper = effects().wrapper();
    // The one call of the audio thread takes no lock of ours.
    if (opcode == Vst2::effProcessEvents) return wrapper(effect, opcode, index, value, pointer, option);
    CZSP* processor = effects().find(effect);
    if (processor == nullptr) return 0;
    if (opcode == Vst2::effClose) effects().remove(effect);
    if (const auto own = answer(*processor, opcode, index, value, pointer)) return *own;
    const auto result = wrapper(effect, opcode, index, value, pointer, option);
    if (opcode == Vst2::effGetOutputProperties && result != 0)
        nameChannel(*processor, index, *static_cast<Vst2::VstPinProperties*>(pointer));
    return result;
}

} // namespace
} // namespace zarno

ZARNO_EXPORT Vst2::AEffect* VSTPluginMain(Vst2::audioMasterCallback host) {
    using namespace zarno;
    takeCreatedProcessor();
    Vst2::AEffect* effect = zarnoWrapperMain(host);
    CZSP* processor = takeCreatedProcessor();
    if (effect == nullptr || processor == nullptr) return effect;
    effects().add(effect, processor, effect->dispatcher);
    effect->dispatcher = dispatch;
    effect->uniqueID = static_cast<Vst2::VstInt32>(processor->identity().uniqueId);
    effect->version = hostVersion;
    effect->numPrograms = 0;
    effect->numInputs = 0;
    effect->numOutputs = 2;
    effect->initialDelay = 0;
    effect->flags &= ~Vst2::effFlagsNoSoundInStop;
    return effect;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/HostedPlugin.h"

#include "shell/EntryOpcodes.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

namespace zarno {
namespace {

using Entry = Vst2::AEffect* (*) (Vst2::audioMasterCallback);
using HostPointer = HostedPlugin*;

// The instance whose entry is running: until it returns, its callbacks come with no effect or an unknown one.
thread_local HostPointer opening = nullptr;

constexpr std::size_t textBytes = 512; // far more than the interface promises
constexpr double beatsPerMinute = 120.0;

bool hostCanDo(const char* feature) {
    static const char* const features[] = {"sendVstEvents", "sendVstMidiEvent", "sendVstTimeInfo",
                                           "sizeWindow"};
    return std::any_of(std::begin(features), std::end(features),
                       [&](const char* known) { return std::strcmp(known, feature) == 0; });
}

} // namespace

std::unique_ptr<HostedPlugin> HostedPlugin::load(const std::string& path, const Options& options,
                                                 std::string& error) {
    auto module = SharedModule::load(path, error);
    if (!module) return nullptr;
    const auto entry = reinterpret_cast<Entry>(module->symbol("VSTPluginMain"));
    if (entry == nullptr) {
        error = path + " exports no VSTPluginMain";
        return nullptr;
    }
    std::unique_ptr<HostedPlugin> plugin(new HostedPlugin(std::move(module), options));
    opening = plugin.get();
    plugin->effect_ = entry(hostCallback);
    opening = nullptr;
    if (plugin->effect_ == nullptr || plugin->effect_->magic != Vst2::kEffectMagic) {
        error = path + " opened no instance";
        plugin->effect_ = nullptr;
        return nullptr;
    }
    plugin->effect_->resvd1 = reinterpret_cast<Vst2::VstIntPtr>(plugin.get()); // the host's to use
    plugin->call(Vst2::effOpen);
    return plugin;
}

HostedPlugin::~HostedPlugin() {
    if (effect_ == nullptr) return;
    closeEditor();
    deactivate();
    call(Vst2::effClose);
}

Vst2::VstIntPtr HostedPlugin::call(int opcode, int index, Vst2::VstIntPtr value, void* pointer,
                                   float option) {
    return effect_->dispatcher(effect_, opcode, index, value, pointer, option);
}

std::string HostedPlugin::text(int opcode, int index) {
    char buffer[textBytes] = {};
    call(opcode, index, 0, buffer);
    buffer[textBytes - 1] = 0;
    return buffer;
}

void HostedPlugin::activate(double sampleRate, int blockSize) {
    deactivate();
    options_.sampleRate = sampleRate;
    options_.blockSize = blockSize;
    call(Vst2::effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRate));
    call(Vst2::effSetBlockSize, 0, blockSize);
    call(Vst2::effMainsChanged, 0, 1);
    active_ = true;
}

void HostedPlugin::deactivate() {
    if (active_) call(Vst2::effMainsChanged, 0, 0);
    active_ = false;
}

void HostedPlugin::send(const std::vector<HostEvent>& events) {
    if (events.empty()) return;
    std::vector<Vst2::VstMidiEvent> shortOnes(events.size());
    std::vector<Vst2::VstMidiSysexEvent> longOnes(events.size());
    std::vector<char> memory(offsetof(Vst2::VstEvents, events) + events.size() * sizeof(void*));
    auto* list = reinterpret_cast<Vst2::VstEvents*>(memory.data());
    list->numEvents = static_cast<int>(events.size());
    for (std::size_t i = 0; i < events.size(); ++i) {
        const HostEvent& event = events[i];
        Vst2::VstMidiEvent& plain = shortOnes[i];
        Vst2::VstMidiSysexEvent& sysex = longOnes[i];
        plain.type = Vst2::kVstMidiType;
        plain.byteSize = sizeof plain;
        plain.deltaFrames = sysex.deltaFrames = event.offset;
        sysex.type = Vst2::kVstSysExType;
        sysex.byteSize = sizeof sysex;
        sysex.dumpBytes = static_cast<int>(event.bytes.size());
        sysex.sysexDump = const_cast<char*>(reinterpret_cast<const char*>(event.bytes.data()));
        const bool isShort = event.bytes.size() <= 3;
        if (isShort) std::copy(event.bytes.begin(), event.bytes.end(), plain.midiData);
        list->events[i] =
            isShort ? reinterpret_cast<Vst2::VstEvent*>(&plain) : reinterpret_cast<Vst2::VstEvent*>(&sysex);
    }
    call(Vst2::effProcessEvents, 0, 0, list);
}

void HostedPlugin::process(float* left, float* right, int frames) {
    float* outputs[] = {left, right};
    effect_->processReplacing(effect_, nullptr, outputs, frames);
    renderedFrames_ += frames;
}

std::vector<std::uint8_t> HostedPlugin::chunk() {
    void* data = nullptr;
    const auto size = call(Vst2::effGetChunk, 0, 0, &data);
    if (data == nullptr || size <= 0) return {};
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

void HostedPlugin::restore(std::span<const std::uint8_t> chunk) {
    std::vector<std::uint8_t> copy(chunk.begin(), chunk.end());
    call(Vst2::effSetChunk, 0, static_cast<Vst2::VstIntPtr>(copy.size()), copy.data());
}

bool HostedPlugin::seedRandom(std::uint32_t seed) {
    return call(Vst2::effVendorSpecific, entryOpcode::magic, entryOpcode::seedRandom,
                reinterpret_cast<void*>(static_cast<std::uintptr_t>(seed))) == 1;
}

bool HostedPlugin::waitForLoading(double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (;;) {
        const auto bytes = chunk();
        if (bytes.empty() || bytes[0] == 0 || bytes.back() != 0 ||
            std::count(bytes.begin(), bytes.end(), 0) > 1)
            return true;
        if (std::chrono::steady_clock::now() > end) return false;
        idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

bool HostedPlugin::openEditor(void* parent) {
    editorOpen_ = call(Vst2::effEditOpen, 0, 0, parent) != 0;
    return editorOpen_;
}

void HostedPlugin::closeEditor() {
    if (editorOpen_) call(Vst2::effEditClose);
    editorOpen_ = false;
}

HostedPlugin::Size HostedPlugin::editorSize() {
    Vst2::ERect* rectangle = nullptr;
    call(Vst2::effEditGetRect, 0, 0, &rectangle);
    if (rectangle == nullptr) return {};
    return {rectangle->right - rectangle->left, rectangle->bottom - rectangle->top};
}

void HostedPlugin::idle() {
    pumpMessages();
    if (editorOpen_) call(Vst2::effEditIdle);
}

Vst2::VstIntPtr HostedPlugin::timeInfo() {
    time_.samplePos = renderedFrames_;
    time_.sampleRate = options_.sampleRate;
    time_.tempo = beatsPerMinute;
    time_.ppqPos = renderedFrames_ / options_.sampleRate * beatsPerMinute / 60.0;
    time_.timeSigNumerator = time_.timeSigDenominator = 4;
    time_.flags =
        Vst2::kVstTransportPlaying | Vst2::kVstTempoValid | Vst2::kVstPpqPosValid | Vst2::kVstTimeSigValid;
    return reinterpret_cast<Vst2::VstIntPtr>(&time_);
}

Vst2::VstIntPtr HostedPlugin::handle(int opcode, int index, Vst2::VstIntPtr value, void* pointer) {
    switch (opcode) {
    case Vst2::audioMasterGetTime:
        return timeInfo();
    case Vst2::audioMasterGetSampleRate:
        return static_cast<Vst2::VstIntPtr>(options_.sampleRate);
    case Vst2::audioMasterGetBlockSize:
        return options_.blockSize;
    case Vst2::audioMasterGetCurrentProcessLevel:
        return offline_ ? Vst2::kVstProcessLevelOffline : Vst2::kVstProcessLevelRealtime;
    case Vst2::audioMasterUpdateDisplay:
        return 1;
    case Vst2::audioMasterSizeWindow:
        return onResize && onResize({index, static_cast<int>(value)}) ? 1 : 0;
    case Vst2::audioMasterCanDo:
        return hostCanDo(static_cast<const char*>(pointer)) ? 1 : 0;
    case Vst2::audioMasterGetVendorString:
        std::strcpy(static_cast<char*>(pointer), "Zarno");
        return 1;
    case Vst2::audioMasterGetProductString:
        std::strcpy(static_cast<char*>(pointer), "vsthost");
        return 1;
    default:
        return 0;
    }
}

Vst2::VstIntPtr HostedPlugin::hostCallback(Vst2::AEffect* effect, int opcode, int index,
                                           Vst2::VstIntPtr value, void* pointer, float) {
    if (opcode == Vst2::audioMasterVersion) return 2400;
    HostPointer host = opening;
    if (effect != nullptr && effect->resvd1 != 0) host = reinterpret_cast<HostPointer>(effect->resvd1);
    return host != nullptr ? host->handle(opcode, index, value, pointer) : 0;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/PluginReport.h"

#include "shell/ModuleIdentity.h"
#include "tools/vsthost/HostedPlugin.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace zarno {
namespace {

constexpr int mostPrograms = 100000; // a plug-in that names every index would go on for ever

std::vector<std::string> outputNames(HostedPlugin& plugin) {
    std::vector<std::string> names;
    for (int i = 0; i < plugin.effect().numOutputs; ++i) {
        Vst2::VstPinProperties pin{};
        names.push_back(plugin.call(Vst2::effGetOutputProperties, i, 0, &pin) != 0 ? pin.label : "");
    }
    return names;
}

std::vector<std::string> programNames(HostedPlugin& plugin) {
    std::vector<std::string> names;
    for (int i = 0; i < mostPrograms; ++i) {
        auto name = plugin.text(Vst2::effGetProgramNameIndexed, i);
        if (name.empty()) break;
        names.push_back(std::move(name));
    }
    return names;
}

nlohmann::ordered_json toJson(const PluginReport& report) {
    return {{"uniqueId", uniqueIdAsText(report.uniqueId)},
            {"uniqueIdNumber", report.uniqueId},
            {"version", report.version},
            {"vendorVersion", report.vendorVersion},
            {"interfaceVersion", report.interfaceVersion},
            {"effectName", report.effectName},
            {"product", report.product},
            {"vendor", report.vendor},
            {"inputs", report.inputs},
            {"outputs", report.outputs},
            {"outputNames", report.outputNames},
            {"parameters", report.parameters},
            {"initialDelay", report.initialDelay},
            {"hasEditor", report.hasEditor},
            {"replacing", report.replacing},
            {"chunks", report.chunks},
            {"synthesizer", report.synthesizer},
            {"silentWhenStopped", report.silentWhenStopped},
            {"receivesMidi", report.receivesMidi},
            {"category", report.category},
            {"programs", report.programs},
            {"programNames", report.programNames},
            {"currentProgram", report.currentProgram},
            {"currentProgramName", report.currentProgramName}};
}

} // namespace

PluginReport askPlugin(HostedPlugin& plugin) {
    const Vst2::AEffect& effect = plugin.effect();
    PluginReport report;
    report.uniqueId = static_cast<std::uint32_t>(effect.uniqueID);
    report.version = effect.version;
    report.vendorVersion = static_cast<int>(plugin.call(Vst2::effGetVendorVersion));
    report.interfaceVersion = static_cast<int>(plugin.call(Vst2::effGetVstVersion));
    report.effectName = plugin.text(Vst2::effGetEffectName);
    report.product = plugin.text(Vst2::effGetProductString);
    report.vendor = plugin.text(Vst2::effGetVendorString);
    report.inputs = effect.numInputs;
    report.outputs = effect.numOutputs;
    report.parameters = effect.numParams;
    report.programs = effect.numPrograms;
    report.initialDelay = effect.initialDelay;
    report.hasEditor = (effect.flags & Vst2::effFlagsHasEditor) != 0;
    report.replacing = (effect.flags & Vst2::effFlagsCanReplacing) != 0;
    report.chunks = (effect.flags & Vst2::effFlagsProgramChunks) != 0;
    report.synthesizer = (effect.flags & Vst2::effFlagsIsSynth) != 0;
    report.silentWhenStopped = (effect.flags & Vst2::effFlagsNoSoundInStop) != 0;
    char feature[] = "receiveVstMidiEvent";
    report.receivesMidi = plugin.call(Vst2::effCanDo, 0, 0, feature) == 1;
    report.category = static_cast<int>(plugin.call(Vst2::effGetPlugCategory));
    report.outputNames = outputNames(plugin);
    report.programNames = programNames(plugin);
    report.currentProgram = static_cast<int>(plugin.call(Vst2::effGetProgram));
    report.currentProgramName = plugin.text(Vst2::effGetProgramName);
    return report;
}

std::string reportAsText(const PluginReport& report) {
    std::ostringstream text;
    const auto fields = toJson(report);
    for (const auto& [key, value] : fields.items()) {
        if (!value.is_array()) {
            text << key << ": " << (value.is_string() ? value.get<std::string>() : value.dump()) << '\n';
            continue;
        }
        text << key << ":\n";
        for (const auto& item : value)
            text << "  " << item.get<std::string>() << '\n';
    }
    return text.str();
}

std::string reportAsJson(const PluginReport& report) {
    return toJson(report).dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

} // namespace zarno

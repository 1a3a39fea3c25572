// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzRegion.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace zarno {
namespace {

// What the reader deals with, and what says nothing about the sound. "N" stands for a number.
const std::set<std::string, std::less<>>& knownOpcodes() {
    static const std::set<std::string, std::less<>> known = {"sample",
                                                             "lokey",
                                                             "hikey",
                                                             "lovel",
                                                             "hivel",
                                                             "pitch_keycenter",
                                                             "tune",
                                                             "transpose",
                                                             "pitch_keytrack",
                                                             "volume",
                                                             "global_volume",
                                                             "master_volume",
                                                             "group_volume",
                                                             "amplitude",
                                                             "global_amplitude",
                                                             "master_amplitude",
                                                             "group_amplitude",
                                                             "amp_keytrack",
                                                             "amp_keycenter",
                                                             "amp_veltrack",
                                                             "pan",
                                                             "ampeg_attack",
                                                             "ampeg_decay",
                                                             "ampeg_sustain",
                                                             "ampeg_release",
                                                             "loop_mode",
                                                             "loop_start",
                                                             "loop_end",
                                                             "count",
                                                             "offset",
                                                             "end",
                                                             "seq_length",
                                                             "seq_position",
                                                             "lorand",
                                                             "hirand",
                                                             "trigger",
                                                             "rt_decay",
                                                             "sw_last",
                                                             "sw_lolast",
                                                             "sw_hilast",
                                                             "sw_down",
                                                             "sw_up",
                                                             "sw_previous",
                                                             "sw_default",
                                                             "sw_lokey",
                                                             "sw_hikey",
                                                             "sw_label",
                                                             "group",
                                                             "off_by",
                                                             "polyphony",
                                                             "loccN",
                                                             "hiccN",
                                                             "xfin_loccN",
                                                             "xfin_hiccN",
                                                             "xfout_loccN",
                                                             "xfout_hiccN",
                                                             "xfin_lovel",
                                                             "xfin_hivel",
                                                             "xfout_lovel",
                                                             "xfout_hivel",
                                                             "xfin_lokey",
                                                             "xfin_hikey",
                                                             "xfout_lokey",
                                                             "xfout_hikey",
                                                             "lochan",
                                                             "hichan",
                                                             "loprog",
                                                             "hiprog",
                                                             "group_label",
                                                             "region_label",
                                                             "master_label",
                                                             "global_label",
                                                             "default_path",
                                                             "note_offset",
                                                             "octave_offset"};
    return known;
}

// Values that ask for what the engine does anyhow.
bool asksForNothing(const std::string& name, const std::string& value) {
    static const std::set<std::pair<std::string, std::string>> harmless = {
        {"off_mode", "fast"}, {"bend_up", "200"}, {"bend_down", "-200"}, {"direction", "forward"},
        {"width", "100"},     {"position", "0"},  {"sustain_sw", "on"},  {"loop_type", "forward"}};
    if (harmless.contains({name, value})) return true;
    static constexpr std::string_view zeroIsNone[] = {
        "delay",        "ampeg_",  "fileg_", "pitcheg_",       "effect",  "lfo",       "amp_random",
        "pitch_random", "offset_", "bend_",  "pitch_veltrack", "amplfo_", "pitchlfo_", "fillfo_"};
    const bool canBeZero = std::any_of(std::begin(zeroIsNone), std::end(zeroIsNone),
                                       [&](std::string_view prefix) { return name.starts_with(prefix); });
    return canBeZero && SfzOpcodes::numberFrom(value) == 0.0;
}

const char* insteadOf(std::string_view name) {
    static constexpr std::pair<std::string_view, const char*> families[] = {
        {"pitcheg", "no pitch envelope"},
        {"pitchlfo", "no vibrato but the instrument's own"},
        {"pitch_", "the same pitch for every note"},
        {"fil", "played unfiltered"},
        {"cutoff", "played unfiltered"},
        {"resonance", "played unfiltered"},
        {"eq", "played without equaliser"},
        {"effect", "played dry"},
        {"lfo", "no LFO of its own"},
        {"amplfo", "no tremolo"},
        {"ampeg_hold", "decay begins at once"},
        {"ampeg_delay", "starts at once"},
        {"ampeg", "the envelope stays as it is"},
        {"amp_velcurve", "the usual velocity curve"},
        {"amp_random", "the same level for every note"},
        {"bend", "the player's range, 2 semitones until a host sets it"},
        {"delay", "starts at once"},
        {"offset", "starts at the same place"},
        {"off_mode", "cut off fast"},
        {"off_time", "cut off fast"},
        {"width", "the recording's own width"},
        {"position", "not moved"},
        {"direction", "played forwards"},
        {"loop_crossfade", "loops without a crossfade"},
        {"note_polyphony", "the whole instrument's limit"},
    };
    for (const auto& [prefix, instead] : families)
        if (name.starts_with(prefix)) return instead;
    return "not understood, ignored";
}

// "pan_oncc10" and "pan_oncc11" are one kind.
std::string kindOf(const std::string& name) {
    const std::size_t controller = name.rfind("cc");
    if (controller == std::string::npos) return name;
    std::size_t end = controller + 2;
    while (end < name.size() && std::isdigit(static_cast<unsigned char>(name[end])) != 0)
        ++end;
    return end == controller + 2 ? name : name.substr(0, controller + 2) + 'N' + name.substr(end);
}

} // namespace

void reportSfzOpcodes(const SfzOpcodes& opcodes, const std::string& place, ImportReport& report) {
    opcodes.forEach([&](const std::string& name, const std::string& value) {
        const std::string kind = kindOf(name);
        if (knownOpcodes().contains(kind) || asksForNothing(name, value)) return;
        const bool isModulation = kind != name && !kind.starts_with("set_") && !kind.starts_with("label_");
        report.add(kind, isModulation ? "controllers do not change it" : insteadOf(name), place);
    });
}

} // namespace zarno

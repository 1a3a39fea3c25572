// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzRegion.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace zarno {
namespace {

// What the reader deals with, and what says nothing about the sound. "N" stands for a number.
constexpr std::string_view knownOpcodes =
    "sample default_path note_offset octave_offset group_label region_label master_label global_label "
    "label_ccN "
    "set_ccN set_hdccN set_realccN curve_index lokey hikey lovel hivel pitch_keycenter tune transpose "
    "pitch_keytrack "
    "volume global_volume master_volume group_volume amplitude global_amplitude master_amplitude "
    "group_amplitude "
    "amp_keytrack amp_keycenter amp_veltrack amp_velcurve_N pan position width ampeg_attack ampeg_hold "
    "ampeg_delay "
    "ampeg_decay ampeg_sustain ampeg_release ampeg_vel2attack ampeg_vel2hold ampeg_vel2delay ampeg_vel2decay "
    "ampeg_vel2release delay loop_mode loop_start loop_end loop_crossfade count offset end direction "
    "seq_length "
    "seq_position lorand hirand trigger rt_decay sw_last sw_lolast sw_hilast sw_down sw_up sw_previous "
    "sw_default "
    "sw_lokey sw_hikey sw_label group off_by polyphony loccN hiccN xfin_loccN xfin_hiccN xfout_loccN "
    "xfout_hiccN "
    "xfin_lovel xfin_hivel xfout_lovel xfout_hivel xfin_lokey xfin_hikey xfout_lokey xfout_hikey xf_cccurve "
    "xf_velcurve xf_keycurve lochan hichan loprog hiprog fil_type fil2_type cutoff cutoff2 resonance "
    "resonance2 "
    "fil_keytrack fil2_keytrack fil_keycenter fil2_keycenter fil_gain fil2_gain eqN_freq eqN_bw eqN_gain "
    "eqN_type "
    "fileg_depth fileg_delay fileg_attack fileg_hold fileg_decay fileg_sustain pitcheg_depth pitcheg_delay "
    "pitcheg_attack pitcheg_hold pitcheg_decay pitcheg_sustain pitchlfo_depth pitchlfo_freq pitchlfo_delay "
    "pitchlfo_fade amplfo_depth amplfo_freq amplfo_delay amplfo_fade fillfo_depth fillfo_freq fillfo_delay "
    "fillfo_fade "
    "lfoN_freq lfoN_delay lfoN_fade lfoN_wave lfoN_phase lfoN_pitch lfoN_volume lfoN_cutoff varN_mod";

// Values between the softest and the loudest note: copies of samples have that of the middle one.
constexpr std::string_view byVelocity = "pitch_veltrack fil_veltrack fil2_veltrack eqN_vel2gain eqN_vel2freq "
                                        "fileg_vel2depth pitcheg_vel2depth";

using Words = std::set<std::string_view>;

Words wordsOf(std::string_view text) {
    Words words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        words.insert(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

bool isKnown(std::string_view kind) {
    static const Words known = wordsOf(knownOpcodes);
    return known.contains(kind);
}

bool isByVelocity(std::string_view kind) {
    static const Words words = wordsOf(byVelocity);
    return words.contains(kind);
}

// Values that ask for what the engine does anyhow.
bool asksForNothing(const std::string& name, const std::string& value) {
    static const std::set<std::pair<std::string, std::string>> harmless = {
        {"off_mode", "fast"},     {"bend_up", "200"},   {"bend_down", "-200"},
        {"direction", "forward"}, {"sustain_sw", "on"}, {"loop_type", "forward"}};
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
        {"pitch_", "the same pitch for every note"},
        {"fil", "played without it"},
        {"eq", "played without it"},
        {"pitcheg", "played without it"},
        {"effect", "played dry"},
        {"lfo", "no LFO of its own"},
        {"ampeg", "the envelope stays as it is"},
        {"amp_random", "the same level for every note"},
        {"bend", "the player's range, 2 semitones until a host sets it"},
        {"offset", "starts at the middle one of its places"},
        {"off_mode", "cut off fast"},
        {"off_time", "cut off fast"},
        {"note_polyphony", "the whole instrument's limit"},
    };
    for (const auto& [prefix, instead] : families)
        if (name.starts_with(prefix)) return instead;
    return "not understood, ignored";
}

// "eq1_gain" and "eq2_gain", "locc10" and "locc11" are one kind: every number behind letters is N, but for
// those that say which of two it is.
std::string kindOf(const std::string& name) {
    if (isKnown(name) || isByVelocity(name)) return name;
    std::string kind;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool isDigit = std::isdigit(static_cast<unsigned char>(name[i])) != 0;
        if (!isDigit)
            kind += name[i];
        else if (kind.empty() || kind.back() != 'N')
            kind += 'N';
    }
    return kind;
}

} // namespace

void reportSfzOpcodes(const SfzOpcodes& opcodes, const std::string& place, ImportReport& report) {
    opcodes.forEach([&](const std::string& name, const std::string& value) {
        const std::string target = sfzModulationTarget(name); // the controller has its own remark
        const std::string kind = kindOf(target.empty() ? name : target);
        if (isKnown(kind) || asksForNothing(name, value)) return;
        if (isByVelocity(kind)) {
            if (SfzOpcodes::numberFrom(value) != 0.0)
                report.add(kind, "as it is for a note of middle velocity", place);
            return;
        }
        if (kind.starts_with("hint_")) return; // for other players
        if (kind.starts_with("varN")) return; // what it changes is reported by itself
        report.add(kind, insteadOf(name), place);
    });
}

} // namespace zarno

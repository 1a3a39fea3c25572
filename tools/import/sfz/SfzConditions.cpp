// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzCrossfade.h"
#include "tools/import/sfz/SfzRegion.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace zarno {
namespace {

class ConditionReader {
  public:
    ConditionReader(const SfzOpcodes& opcodes, const SfzControl& control, SfzRegion& region,
                    ImportReport& report)
        : opcodes_(opcodes)
        , control_(control)
        , region_(region)
        , zone_(region.zone)
        , report_(report) {}

    bool read() {
        if (!trigger()) return false;
        alternation();
        keyswitch();
        if (!controllerRanges()) return false;
        number("lochan", "hichan", GroupTrigger::Channel, 1, 16);
        number("loprog", "hiprog", GroupTrigger::Program, 0, 127);
        return true;
    }

  private:
    bool trigger();
    void releaseDecay();
    void alternation();
    void keyswitch();
    bool controllerRanges();
    bool fadesOfControllers(std::map<int, ImportedRange>& ranges);
    void number(const char* low, const char* high, GroupTrigger kind, int lowest, int highest);
    void require(const ImportedCondition& condition, const std::string& what);

    const SfzOpcodes& opcodes_;
    const SfzControl& control_;
    SfzRegion& region_;
    ImportedZone& zone_;
    ImportReport& report_;
};

bool ConditionReader::trigger() {
    const std::string trigger = opcodes_.text("trigger", "attack");
    bool byController = false;
    for (const char* prefix : {"on_locc", "on_hicc", "start_locc", "start_hicc"})
        opcodes_.forEachNumbered(prefix, [&](int, const std::string&) { byController = true; });
    if (trigger == "legato" || byController) {
        report_.add(byController ? "region started by a controller" : "trigger=legato", "left out",
                    zone_.place);
        return false;
    }
    if (trigger == "first") report_.add("trigger=first", "every note plays it", zone_.place);
    if (trigger == "release_key")
        report_.add("trigger=release_key", "not played when the key goes up while the pedal is down",
                    zone_.place);
    if (trigger == "release")
        report_.add("release sample under the pedal", "not played when the pedal goes up after the key",
                    zone_.place);
    zone_.onRelease = trigger == "release" || trigger == "release_key";
    zone_.group = opcodes_.text("group_label");
    releaseDecay();
    return true;
}

// The engine lowers the velocity in a straight line to nothing; both are 12 dB down together, at half of it.
void ConditionReader::releaseDecay() {
    const double perSecond = opcodes_.number("rt_decay", 0.0);
    if (!zone_.onRelease || perSecond <= 0.0) return;
    constexpr double halfVelocityDb = 12.0411998;
    zone_.releaseDecay = std::min(2000.0 * halfVelocityDb / perSecond, 1e6);
    if (opcodes_.number("amp_veltrack", 100.0) == 0.0)
        report_.add("rt_decay without velocity tracking", "release samples do not fade", zone_.place);
}

void ConditionReader::alternation() {
    using Kind = ImportedAlternation::Kind;
    const int length = std::clamp(opcodes_.integer("seq_length", 1), 1, 128);
    const int position = std::clamp(opcodes_.integer("seq_position", 1), 1, length);
    const double low = opcodes_.number("lorand", 0.0), high = opcodes_.number("hirand", 1.0);
    const bool isRandom = low > 0.0 || high < 1.0;
    if (length > 1) {
        zone_.alternation = {Kind::RoundRobin, position - 1, length};
        if (isRandom)
            report_.add("lorand/hirand beside seq_position", "the sequence alone decides", zone_.place);
    } else if (isRandom) {
        zone_.alternation.kind = Kind::Random;
        zone_.alternation.low = std::clamp(low, 0.0, 1.0);
        zone_.alternation.high = std::clamp(high, 0.0, 1.0);
    }
}

// One condition a group: the first that was asked for stays.
void ConditionReader::require(const ImportedCondition& condition, const std::string& what) {
    if (zone_.condition.kind == GroupTrigger::Always)
        zone_.condition = condition;
    else
        report_.add(what + " beside another condition", "not asked for", zone_.place);
}

void ConditionReader::keyswitch() {
    std::optional<int> note = opcodes_.key("sw_last");
    if (!note && (note = opcodes_.key("sw_lolast")))
        if (opcodes_.key("sw_hilast") != note)
            report_.add("sw_lolast to sw_hilast", "the lowest of these keys", zone_.place);
    if (!note && (note = opcodes_.key("sw_down")))
        report_.add("sw_down", "as sw_last: the key need not be held", zone_.place);
    for (const char* name : {"sw_up", "sw_previous"})
        if (opcodes_.has(name)) report_.add(name, "not asked for", zone_.place);
    if (!note) return;
    require({GroupTrigger::Note, *note + control_.noteOffset}, "keyswitch");
    if (const std::string* label = opcodes_.find("sw_label")) zone_.group = *label;
}

// A range that the start value is in stays so, and what needs another value is left out; but where the
// engine's controllers start as well as the text's, the first of them decides for the group, and can be
// moved.
bool ConditionReader::controllerRanges() {
    std::map<int, ImportedRange> ranges;
    const auto limit = [&](const char* prefix, auto&& change) {
        opcodes_.forEachNumbered(prefix, [&](int controller, const std::string& value) {
            const auto number = SfzOpcodes::numberFrom(value);
            if (number && controller >= 0 && controller < SfzControllers::noteVelocity)
                change(ranges[controller], static_cast<int>(std::clamp(*number, 0.0, 127.0)));
        });
    };
    limit("locc", [](ImportedRange& range, int value) { range.low = std::max(range.low, value); });
    limit("hicc", [](ImportedRange& range, int value) { range.high = std::min(range.high, value); });
    if (!fadesOfControllers(ranges)) return false;
    for (const auto& [controller, range] : ranges) {
        if (range == ImportedRange()) continue;
        if (control_.controllers.canFollow(controller) && zone_.condition.kind == GroupTrigger::Always) {
            zone_.condition = {GroupTrigger::Controller, controller, range.low, range.high};
            continue;
        }
        const double value = std::floor(control_.controllers.start(controller) * 127.0 + 1e-6);
        if (value >= range.low && value <= range.high) continue;
        report_.add("region for another value of " + control_.controllers.nameOf(controller), "left out",
                    zone_.place);
        return false;
    }
    return true;
}

// Where a fade can follow its controller it is split in the middle, else it has the level of the start.
bool ConditionReader::fadesOfControllers(std::map<int, ImportedRange>& ranges) {
    std::set<int> fading;
    for (const char* prefix : {"xfin_locc", "xfin_hicc", "xfout_locc", "xfout_hicc"})
        opcodes_.forEachNumbered(prefix, [&](int controller, const std::string&) {
            if (controller >= 0 && controller < SfzControllers::noteVelocity) fading.insert(controller);
        });
    for (const int controller : fading) {
        const SfzCrossfade fade = sfzCrossfade(opcodes_, "cc", 0, controller);
        const double start = control_.controllers.start(controller) * 127.0;
        const double level = fade.decibelsAt(start);
        const bool isWhole = level <= silentGain || level == 0.0;
        if (isWhole && control_.controllers.canFollow(controller) &&
            zone_.condition.kind == GroupTrigger::Always) {
            report_.note("crossfade of " + control_.controllers.nameOf(controller),
                         "split in the middle, decided when a note starts", zone_.place);
            ImportedRange& range = ranges[controller];
            if (fade.in) range.low = std::max(range.low, (fade.in->low + fade.in->high + 1) / 2);
            if (fade.out) range.high = std::min(range.high, (fade.out->low + fade.out->high + 1) / 2 - 1);
            continue;
        }
        report_.add("crossfade of " + control_.controllers.nameOf(controller), "stays at its start value",
                    zone_.place);
        if (level <= silentGain) return false;
        zone_.volume += level;
    }
    return true;
}

// Ranges of one only: a group knows one channel, one program.
void ConditionReader::number(const char* low, const char* high, GroupTrigger kind, int lowest, int highest) {
    const ImportedRange range{opcodes_.integer(low, lowest), opcodes_.integer(high, highest)};
    if (range.low <= lowest && range.high >= highest) return;
    if (range.low == range.high)
        require({kind, range.low - (kind == GroupTrigger::Channel ? 1 : 0)}, low);
    else
        report_.add(std::string(low) + " to " + high, "not asked for", zone_.place);
}

} // namespace

bool readSfzConditions(const SfzOpcodes& opcodes, const SfzControl& control, SfzRegion& region,
                       ImportReport& report) {
    return ConditionReader(opcodes, control, region, report).read();
}

} // namespace zarno

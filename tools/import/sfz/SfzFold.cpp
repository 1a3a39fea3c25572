// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzFold.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>

namespace zarno {
namespace {

constexpr double silentDb = -144.0;

// "pan_oncc10" says by how much, "pan_curvecc10" along which curve; "pan_smoothcc10" nothing at the start.
struct ModulationName {
    enum class Part { Depth, Curve, Other };
    std::string target;
    int controller = 0;
    Part part = Part::Depth;
};

// Values that are compared with a controller, or set one, are none that it changes.
bool isLimit(std::string_view stem) {
    for (const std::string_view end : {"lo", "hi", "lohd", "hihd"})
        if (stem.ends_with(end) && (stem.size() == end.size() || stem[stem.size() - end.size() - 1] == '_'))
            return true;
    return stem.starts_with("set_") || stem.starts_with("label_") || stem.empty();
}

std::optional<ModulationName> modulationFrom(const std::string& name) {
    const std::size_t at = name.rfind("cc");
    if (at == std::string::npos) return std::nullopt;
    const auto controller = SfzOpcodes::wholeNumber(std::string_view(name).substr(at + 2));
    if (!controller || *controller < 0 || *controller >= SfzControllers::count) return std::nullopt;
    std::string_view stem(name.data(), at);
    if (isLimit(stem)) return std::nullopt;
    using Part = ModulationName::Part;
    Part part = Part::Depth;
    constexpr std::pair<std::string_view, Part> ends[] = {{"_on", Part::Depth},
                                                          {"_curve", Part::Curve},
                                                          {"_smooth", Part::Other},
                                                          {"_step", Part::Other},
                                                          {"_", Part::Depth}};
    for (const auto& [end, kind] : ends)
        if (stem.ends_with(end)) {
            stem.remove_suffix(end.size());
            part = kind;
            break;
        }
    if (stem.empty()) return std::nullopt;
    std::string target(stem);
    if (target == "gain") target = "volume";
    if (target == "pitch") target = "tune";
    return ModulationName{target, *controller, part};
}

struct Source {
    double depth = 0.0;
    int curve = 0;
};
using Sources = std::map<int, Source>; // by controller

// What an opcode is when it is not there.
double usualValue(const std::string& name) {
    static const std::map<std::string, double, std::less<>> usual = {
        {"amplitude", 100.0},     {"amp_veltrack", 100.0},
        {"ampeg_sustain", 100.0}, {"ampeg_release", 0.001},
        {"width", 100.0},         {"pitch_keytrack", 100.0},
        {"fileg_sustain", 100.0}, {"pitcheg_sustain", 100.0},
        {"eq1_freq", 50.0},       {"eq2_freq", 500.0},
        {"eq3_freq", 5000.0},     {"eq1_bw", 1.0},
        {"eq2_bw", 1.0},          {"eq3_bw", 1.0}};
    const auto found = usual.find(name);
    return found == usual.end() ? 0.0 : found->second;
}

bool isCutoff(const std::string& name) {
    return name == "cutoff" || name == "cutoff2";
}

class Fold {
  public:
    Fold(SfzOpcodes& opcodes, const SfzControllers& controllers)
        : opcodes_(opcodes)
        , controllers_(controllers) {}

    SfzVelocityLevel run(const std::string& place, ImportReport& report);

  private:
    void collect();
    void addVariables();
    void apply(const std::string& target, const Sources& sources);
    double valueOf(int controller, const Source& source) const {
        return source.depth * controllers_.curved(source.curve, controllers_.start(controller));
    }

    SfzOpcodes& opcodes_;
    const SfzControllers& controllers_;
    std::map<std::string, Sources> targets_;
    std::map<std::string, double> added_; // by variables
    SfzVelocityLevel velocity_;
};

void Fold::collect() {
    std::vector<std::pair<ModulationName, double>> curves;
    opcodes_.forEach([&](const std::string& name, const std::string& value) {
        const auto found = modulationFrom(name);
        const auto number = found ? SfzOpcodes::numberFrom(value) : std::nullopt;
        if (!number) return;
        if (found->part == ModulationName::Part::Depth)
            targets_[found->target].try_emplace(found->controller,
                                                Source{*number, 0}); // the nearest one counts
        else if (found->part == ModulationName::Part::Curve)
            curves.emplace_back(*found, *number);
    });
    for (const auto& [name, number] : curves)
        if (const auto target = targets_.find(name.target); target != targets_.end())
            if (const auto source = target->second.find(name.controller); source != target->second.end())
                source->second.curve = static_cast<int>(std::clamp(number, 0.0, 1e6));
}

// "var1_oncc7" and "var1_oncc8" make a value, "var1_mod=mult" their product instead of their sum, and
// "var1_pan=100" adds a hundred times that to the pan.
void Fold::addVariables() {
    std::map<std::string, double> values;
    for (const auto& [target, sources] : targets_) {
        if (!target.starts_with("var") || target.find('_') != std::string::npos) continue;
        const bool isProduct = opcodes_.text(target + "_mod") == "mult";
        double value = isProduct ? 1.0 : 0.0;
        for (const auto& [controller, source] : sources)
            value = isProduct ? value * valueOf(controller, source) : value + valueOf(controller, source);
        values[target + '_'] = value;
    }
    if (values.empty()) return;
    opcodes_.forEach([&](const std::string& name, const std::string& text) {
        if (modulationFrom(name)) return; // makes the value
        const auto value = values.find(name.substr(0, name.find('_') + 1));
        const auto depth = value == values.end() ? std::nullopt : SfzOpcodes::numberFrom(text);
        if (depth) added_[name.substr(value->first.size())] += *depth * value->second;
    });
}

void Fold::apply(const std::string& target, const Sources& sources) {
    const auto base = opcodes_.number(target);
    if (isCutoff(target) && !base) return; // there is no filter
    double value = base.value_or(usualValue(target));
    double sum = 0.0;
    const bool isFactor = target == "amplitude", isLevel = isFactor || target == "volume";
    for (const auto& [controller, source] : sources) {
        if (isLevel && controller == SfzControllers::noteVelocity)
            velocity_.changes.push_back(
                {isFactor, isFactor ? source.depth / 100.0 : source.depth, source.curve});
        else if (isFactor) {
            value *= valueOf(controller, source) / 100.0;
            if (valueOf(controller, source) == 0.0) velocity_.silencedBy = controller;
        } else
            sum += valueOf(controller, source);
    }
    if (const auto more = added_.find(target); more != added_.end())
        isFactor ? value *= more->second / 100.0 : sum += more->second;
    value = isCutoff(target) ? value * std::exp2(std::clamp(sum, -24000.0, 24000.0) / 1200.0) : value + sum;
    if (!std::isfinite(value) || (!base && value == usualValue(target))) return;
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, std::clamp(value, -1e12, 1e12)).ptr;
    opcodes_.set(SfzOpcodes::Start, {target, std::string(text, end)});
}

SfzVelocityLevel Fold::run(const std::string& place, ImportReport& report) {
    collect();
    if (targets_.empty()) return {};
    addVariables();
    for (const auto& [target, value] : added_)
        targets_.try_emplace(target);
    std::map<int, std::size_t> used;
    for (const auto& [target, sources] : targets_) {
        if (target.starts_with("var") && target.find('_') == std::string::npos) continue;
        apply(target, sources);
        for (const auto& [controller, source] : sources)
            if (controller < 128 && source.depth != 0.0) ++used[controller];
    }
    for (const auto& [controller, count] : used)
        report.note(controllers_.nameOf(controller), "what it changes stays at the start value", place);
    return std::move(velocity_);
}

} // namespace

double SfzVelocityLevel::decibelsAt(int velocity, const SfzControllers& controllers) const {
    double sum = 0.0;
    for (const Change& change : changes) {
        const double value = change.depth * controllers.curved(change.curve, velocity / 127.0);
        sum += !change.isFactor ? value : value > 0.0 ? 20.0 * std::log10(value) : silentDb;
    }
    return std::max(sum, silentDb);
}

SfzVelocityLevel foldControllers(SfzOpcodes& opcodes, const SfzControllers& controllers,
                                 const std::string& place, ImportReport& report) {
    return Fold(opcodes, controllers).run(place, report);
}

std::string sfzModulationTarget(const std::string& name) {
    const auto found = modulationFrom(name);
    return found ? found->target : std::string();
}

} // namespace zarno

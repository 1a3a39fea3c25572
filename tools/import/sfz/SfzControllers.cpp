// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzControllers.h"

#include "tools/import/sfz/SfzOpcodes.h"

#include <algorithm>
#include <cmath>

namespace zarno {
namespace {

constexpr int mostCurves = 256;
constexpr double highest = 127.0;

// The number behind a prefix; -1 when there is none in range.
int numberBehind(const std::string& name, std::string_view prefix, int count) {
    if (!name.starts_with(prefix)) return -1;
    const int number = SfzOpcodes::wholeNumber(std::string_view(name).substr(prefix.size())).value_or(-1);
    return number < count ? number : -1;
}

} // namespace

// Volume, pan and expression start as General MIDI has them; the pitch wheel and what is two-sided rest in
// their middle.
SfzControllers::SfzControllers()
    : starts_{{7, 100.0 / highest}, {10, 64.0 / highest}, {11, 1.0},  {noteVelocity, 0.5},
              {132, 0.5},           {133, 0.5},           {135, 0.5}, {137, 0.5}} {}

void SfzControllers::read(const SfzSection& section) {
    if (section.header == "curve") return readCurve(section);
    for (const SfzOpcode& opcode : section.opcodes)
        if (section.header == "control")
            readControl(opcode);
        else
            readThreshold(opcode);
}

void SfzControllers::readControl(const SfzOpcode& opcode) {
    if (const int number = numberBehind(opcode.name, "label_cc", count); number >= 0)
        labels_[number] = opcode.value;
    const auto value = SfzOpcodes::numberFrom(opcode.value);
    if (!value) return;
    if (const int number = numberBehind(opcode.name, "set_cc", count); number >= 0)
        starts_[number] = std::clamp(*value, 0.0, highest) / highest;
    for (const char* prefix : {"set_hdcc", "set_realcc"})
        if (const int number = numberBehind(opcode.name, prefix, count); number >= 0)
            starts_[number] = std::clamp(*value, 0.0, 1.0);
}

// Straight lines between the points that are given; from 0 to 1 where the ends are not.
void SfzControllers::readCurve(const SfzSection& section) {
    int index = -1;
    std::map<int, double> points = {{0, 0.0}, {127, 1.0}};
    for (const SfzOpcode& opcode : section.opcodes) {
        const auto value = SfzOpcodes::numberFrom(opcode.value);
        if (!value) continue;
        if (opcode.name == "curve_index") index = static_cast<int>(std::clamp(*value, -1.0, 1e6));
        if (const int at = numberBehind(opcode.name, "v", 128); at >= 0)
            points[at] = std::clamp(*value, -1e6, 1e6);
    }
    if (index < 0 || index >= mostCurves) return;
    Curve& curve = curves_[index];
    for (auto right = std::next(points.begin()); right != points.end(); ++right) {
        const auto left = std::prev(right);
        for (int at = left->first; at <= right->first; ++at)
            curve[static_cast<std::size_t>(at)] = left->second + (right->second - left->second) *
                                                                     (at - left->first) /
                                                                     (right->first - left->first);
    }
}

void SfzControllers::readThreshold(const SfzOpcode& opcode) {
    const auto value = SfzOpcodes::numberFrom(opcode.value);
    if (!value) return;
    const int at = static_cast<int>(std::clamp(*value, -1.0, 128.0));
    for (const char* prefix : {"locc", "xfin_locc", "xfin_hicc", "xfout_locc", "xfout_hicc"})
        if (const int number = numberBehind(opcode.name, prefix, count); number >= 0)
            steps_[number].insert(at);
    if (const int number = numberBehind(opcode.name, "hicc", count); number >= 0)
        steps_[number].insert(at + 1);
}

double SfzControllers::start(int controller) const {
    const auto found = starts_.find(controller);
    return found == starts_.end() ? 0.0 : found->second;
}

double SfzControllers::curved(int index, double value) const {
    value = std::clamp(value, 0.0, 1.0);
    if (const auto own = curves_.find(index); own != curves_.end()) {
        const double at = value * highest;
        const auto below = static_cast<std::size_t>(std::min(at, highest - 1.0));
        return std::lerp(own->second[below], own->second[below + 1], at - static_cast<double>(below));
    }
    switch (index) {
    case 1: // two-sided
        return 2.0 * value - 1.0;
    case 2:
        return 1.0 - value;
    case 3:
        return 1.0 - 2.0 * value;
    case 4: // concave, for levels
        return value * value;
    case 5: // the two sides of a crossfade of equal power
        return std::sqrt(value);
    case 6:
        return std::sqrt(1.0 - value);
    default:
        return value;
    }
}

std::string SfzControllers::nameOf(int controller) const {
    const std::string name = "controller " + std::to_string(controller);
    const auto label = labels_.find(controller);
    return label == labels_.end() || label->second.empty() ? name : name + " (" + label->second + ')';
}

bool SfzControllers::canFollow(int controller) const {
    constexpr int firstChannelMode = 120; // which reset or silence the engine
    const auto steps = steps_.find(controller);
    if (controller < 0 || controller >= firstChannelMode || steps == steps_.end()) return false;
    const auto first = steps->second.upper_bound(0);
    return first == steps->second.end() || start(controller) * highest < *first;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/PanelNames.h"

#include "gui/ControlBindings.h"
#include "gui/LayoutFormat.h"
#include "platform/Utf8.h"
#include "tools/zarno/JsonFaults.h"

#include <algorithm>
#include <charconv>

namespace zarno {
namespace {

struct PlainName {
    std::string_view number, name;
    std::optional<ControlKind> kind = {}; // of all controls when there is none
};
constexpr PlainName plainNames[] = {
    {"1", "picture"},
    {"2", "control"},
    {"3", "stays", ControlKind::Button},
    {"3", "display", ControlKind::Keyboard},
    {"4", "keys", ControlKind::Keyboard},
    {"5", "align", ControlKind::Label},
    {"6", "font", ControlKind::Label},
    {"7", "size", ControlKind::Label},
    {"8", "text"},
    {"9", "mark"},
};

constexpr std::string_view alignments[] = {"left", "right", "across-middle", "top", "bottom", "down-middle"};

std::optional<ControlKind> kindOf(std::string_view tag) {
    for (const ControlTag& each : controlTags)
        if (each.tag == tag) return each.kind;
    return std::nullopt;
}

std::optional<int> wholeNumber(std::string_view text) {
    int value = 0;
    const char* end = text.data() + text.size();
    if (std::from_chars(text.data(), end, value).ptr != end || std::to_string(value) != text)
        return std::nullopt;
    return value;
}

std::string controlName(ControlKind kind, int id) {
    const auto* knob = kind == ControlKind::Knob ? findKnob(id) : nullptr;
    const auto* combo = kind == ControlKind::Combo ? findCombo(id) : nullptr;
    const auto* button = kind == ControlKind::Button ? findButton(id) : nullptr;
    const char* setting = knob ? knob->setting : combo ? combo->setting : button ? button->setting : "";
    if (kind == ControlKind::Label && id == 1) setting = "Instrument title";
    if (kind == ControlKind::Label && id == 2) setting = "Active groups";
    if (kind == ControlKind::Knob && id == pitchBendKnobId) setting = "Pitch bend";
    if (kind == ControlKind::Knob && isControllerKnob(id) && id < firstControllerId + 128)
        return "controller " + std::to_string(id - firstControllerId);
    return withFoldedCase(setting);
}

std::vector<std::string> controlNames(ControlKind kind) {
    std::vector<std::string> names;
    for (int id = 0; id < firstControllerId + 128; ++id)
        names.push_back(controlName(kind, id));
    return names;
}

std::string alignmentWords(int bits) {
    std::string words;
    for (std::size_t i = 0; i < std::size(alignments); ++i)
        if ((bits >> i & 1) != 0) words += (words.empty() ? "" : " ") + std::string(alignments[i]);
    return words;
}

std::string idOfControl(ControlKind kind, const std::string& name) {
    if (wholeNumber(name)) return name;
    const auto names = controlNames(kind);
    const auto found = std::find(names.begin(), names.end(), withFoldedCase(name));
    if (found != names.end() && !name.empty()) return std::to_string(found - names.begin());
    std::vector<std::string_view> known;
    std::string list;
    for (const std::string& each : names)
        if (!each.empty()) {
            known.push_back(each);
            if (!each.starts_with("controller ")) list += (list.empty() ? "" : ", ") + each;
        }
    throw MakerError("control", "there is no \"" + name + "\" here" + suggestion(name, known) +
                                    " There are: " + list +
                                    (kind == ControlKind::Knob ? ", controller 0 to 127" : ""));
}

std::string alignmentBits(std::string text) {
    if (wholeNumber(text)) return text;
    int bits = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        const std::string word = text.substr(begin, end - begin);
        const auto found = std::find(std::begin(alignments), std::end(alignments), word);
        if (found == std::end(alignments) && !word.empty())
            throw MakerError("align", "there is no \"" + word +
                                          "\" here: left, right, across-middle, top, bottom, down-middle");
        if (!word.empty()) bits |= 1 << (found - std::begin(alignments));
        begin = end + 1;
    }
    return std::to_string(bits);
}

std::string colourName(const LayoutColour& colour) {
    std::string name = "colour-" + std::string(colour.what);
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

} // namespace

LayoutAttribute readableAttribute(std::string_view tag, const LayoutAttribute& attribute) {
    const auto kind = kindOf(tag);
    if (!kind) return attribute;
    const auto number = wholeNumber(attribute.value);
    for (const PlainName& plain : plainNames) {
        if (plain.number != attribute.name || (plain.kind && plain.kind != kind)) continue;
        std::string value = attribute.value;
        if ((plain.name == "control" || plain.name == "align") && !number) return attribute;
        if (plain.name == "control" && !controlName(*kind, *number).empty())
            value = controlName(*kind, *number);
        if (plain.name == "align" && number && *number > 0 && *number < 64) value = alignmentWords(*number);
        return {std::string(plain.name), value};
    }
    for (const LayoutColour& colour : layoutColours)
        if (colour.kind == kind && attribute.name == std::to_string(colour.id + layoutColourOffset))
            return {colourName(colour), attribute.value};
    return attribute;
}

LayoutAttribute layoutAttribute(std::string_view tag, const LayoutAttribute& readable) {
    const auto kind = kindOf(tag);
    if (!kind) return readable;
    for (const PlainName& plain : plainNames) {
        if (plain.name != readable.name || (plain.kind && plain.kind != kind)) continue;
        std::string value = readable.value;
        if (plain.name == "control") value = idOfControl(*kind, value);
        if (plain.name == "align") value = alignmentBits(value);
        return {std::string(plain.number), value};
    }
    for (const LayoutColour& colour : layoutColours)
        if (colour.kind == kind && colourName(colour) == readable.name)
            return {std::to_string(colour.id + layoutColourOffset), readable.value};
    return readable;
}

} // namespace zarno

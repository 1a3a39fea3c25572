// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/LayoutReader.h"

#include "data/Limits.h"
#include "gui/XmlGuard.h"
#include "platform/Utf8.h"

#include <juce_audio_utils/juce_audio_utils.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace zarno {

namespace {

// The vocabulary gives the framework's colours by number.
constexpr int frameworkColours[] = {
    juce::Slider::rotarySliderOutlineColourId,
    juce::Slider::rotarySliderFillColourId,
    juce::TextButton::buttonColourId,
    juce::TextButton::buttonOnColourId,
    juce::Label::textColourId,
    juce::MidiKeyboardComponent::whiteNoteColourId,
    juce::MidiKeyboardComponent::blackNoteColourId,
    juce::MidiKeyboardComponent::mouseOverKeyOverlayColourId,
    juce::MidiKeyboardComponent::keySeparatorLineColourId,
    juce::ComboBox::textColourId,
    juce::ComboBox::outlineColourId,
    juce::ComboBox::buttonColourId,
    juce::ComboBox::arrowColourId,
    juce::ComboBox::backgroundColourId,
};
static_assert(std::equal(std::begin(frameworkColours), std::end(frameworkColours), std::begin(layoutColours),
                         std::end(layoutColours),
                         [](int framework, const LayoutColour& ours) { return framework == ours.id; }));

constexpr int anyNumber = std::numeric_limits<int>::max(); // of what is no length

// A decimal integer at the start of the text; whatever is too large for the range is cut to it.
int integer(const juce::String& text, int limit) {
    const auto digits = text.trimStart().initialSectionContainingOnly("-0123456789");
    const auto value = digits.substring(0, 12).getLargeIntValue();
    return static_cast<int>(std::clamp<juce::int64>(value, -limit, limit));
}

class Attributes {
  public:
    explicit Attributes(const juce::XmlElement& element) {
        for (int i = 0; i < element.getNumAttributes(); ++i)
            list_.emplace_back(element.getAttributeName(i), element.getAttributeValue(i));
    }

    // Names are compared without regard to case; the first one counts.
    const juce::String* find(juce::StringRef name) const {
        for (const auto& [given, value] : list_)
            if (given.equalsIgnoreCase(name)) return &value;
        return nullptr;
    }
    int number(juce::StringRef name, int fallback, int limit = limits::coordinate) const {
        const auto* text = find(name);
        return text != nullptr ? integer(*text, limit) : fallback;
    }
    juce::String text(juce::StringRef name, const juce::String& fallback = {}) const {
        const auto* found = find(name);
        return found != nullptr ? *found : fallback;
    }

  private:
    std::vector<std::pair<juce::String, juce::String>> list_;
};

std::optional<ControlKind> kindOf(const juce::String& tag) {
    for (const auto& known : controlTags)
        if (tag.equalsIgnoreCase(known.tag.data())) return known.kind;
    return {};
}

std::pair<int, int> keyRange(const juce::String& text) {
    if (!text.containsChar(',')) return {0, 127};
    const int first = std::clamp(integer(text.upToFirstOccurrenceOf(",", false, false), 1000), 0, 127);
    const int last = std::clamp(integer(text.fromFirstOccurrenceOf(",", false, false), 1000), 0, 127);
    return std::minmax(first, last);
}

float fontHeight(const Attributes& attributes) {
    const auto* text = attributes.find("7");
    const double height = text != nullptr ? text->getDoubleValue() : 12.0;
    return std::isfinite(height) ? static_cast<float>(std::clamp(height, 0.1, 10000.0)) : 12.0f;
}

bool isTrue(const juce::String& text) {
    const auto first = juce::CharacterFunctions::toLowerCase(text.trimStart()[0]);
    return first == '1' || first == 't' || first == 'y';
}

ControlDescription readControl(ControlKind kind, const juce::XmlElement& element) {
    const Attributes attributes(element);
    ControlDescription control;
    control.kind = kind;
    control.bounds = {attributes.number("x", 0), attributes.number("y", 0),
                      std::max(0, attributes.number("width", 50, limits::panelLength)),
                      std::max(0, attributes.number("height", 50, limits::panelLength))};
    if (attributes.find("1") != nullptr) control.image = attributes.number("1", -1, anyNumber);
    control.id = attributes.number("2", -1, anyNumber);
    control.flag = isTrue(attributes.text("3"));
    if (kind == ControlKind::Keyboard) control.keys = keyRange(attributes.text("4"));
    control.justification = attributes.number("5", 0, anyNumber);
    control.typeface = attributes.text("6");
    control.fontHeight = fontHeight(attributes);
    control.text = attributes.text("8");
    control.extra = attributes.text("9", "-1");
    for (const char* name : {"3", "4", "5", "6", "7", "8"})
        if (const auto* text = attributes.find(name)) control.given.emplace_back(name, *text);
    for (const LayoutColour& colour : layoutColours) {
        const juce::String name(colour.id + layoutColourOffset);
        if (const auto* text = attributes.find(name)) {
            control.colours.emplace_back(colour.id, juce::Colour::fromString(*text));
            control.given.emplace_back(name, *text);
        }
    }
    return control;
}

// "count.characters": six bits a character, so that a count the text cannot fill is a lie.
std::optional<juce::MemoryBlock> decodeImageText(const juce::String& text) {
    const int dot = text.indexOfChar('.');
    if (dot < 1) return {};
    const auto count = text.substring(0, dot).trim().getLargeIntValue();
    const auto bytesInText = (static_cast<juce::int64>(text.getNumBytesAsUTF8()) - dot - 1) * 6 / 8;
    juce::MemoryBlock data;
    if (count < 1 || count > bytesInText || !data.fromBase64Encoding(text.trimStart())) return {};
    return data;
}

void readImages(const juce::XmlElement& parent, std::vector<LayoutImage>& images) {
    for (const auto* child : parent.getChildIterator()) {
        if (child->isTextElement()) continue;
        if (auto data = decodeImageText(child->getAllSubText()))
            images.push_back({integer(child->getTagName(), anyNumber), std::move(*data)});
    }
}

Layout readPlayer(const juce::XmlElement& root) {
    const Attributes attributes(root);
    Layout layout;
    layout.width = std::clamp(attributes.number("width", 600), 1, limits::panelLength);
    layout.height = std::clamp(attributes.number("height", 250), 1, limits::panelLength);
    for (const auto* element : root.getChildIterator()) {
        if (element->isTextElement()) continue;
        if (element->getTagName().equalsIgnoreCase("images"))
            readImages(*element, layout.images);
        else if (const auto kind = kindOf(element->getTagName());
                 kind && layout.controls.size() < limits::controls)
            layout.controls.push_back(readControl(*kind, *element));
    }
    return layout;
}

LayoutProblem formatError(const juce::String& text) {
    return {"Layout XML Format Error", text};
}

} // namespace

std::variant<Layout, LayoutProblem> readLayout(std::string_view bytes) {
    if (bytes.size() > limits::layoutBytes) return formatError("the text is too long");
    std::string text = toUtf8(bytes.substr(0, bytes.find('\0')));
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    if (const char* refusal = refuseXml(text)) return formatError(refusal);

    juce::XmlDocument document(juce::String::fromUTF8(text.data(), static_cast<int>(text.size())));
    const auto root = document.getDocumentElement();
    if (root == nullptr) return formatError(document.getLastParseError());
    if (!root->getTagName().equalsIgnoreCase("Player"))
        return LayoutProblem{"Zarno Sampler Player", "No Player Node found"};
    return readPlayer(*root);
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/check/CheckLayout.h"

#include "gui/ControlBindings.h"
#include "gui/LayoutFormat.h"
#include "tools/check/LayoutElements.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <set>

namespace zarno {
namespace {

constexpr int builtInButtonImage =
    0; // by custom: no layout declares it, and buttons then show the default strip

std::optional<int> wholeNumber(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return value;
}

bool isColour(std::string_view text) {
    return text.size() == 8 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

const ControlTag* controlOf(std::string_view tag) {
    const auto found =
        std::find_if(std::begin(controlTags), std::end(controlTags),
                     [&](const ControlTag& known) { return equalIgnoringCase(known.tag, tag); });
    return found == std::end(controlTags) ? nullptr : found;
}

std::string_view nameOf(ControlKind kind) {
    return std::find_if(std::begin(controlTags), std::end(controlTags),
                        [&](const ControlTag& known) { return known.kind == kind; })
        ->tag;
}

bool drivesSomething(ControlKind kind, int id) {
    switch (kind) {
    case ControlKind::Knob:
        return findKnob(id) || id == pitchBendKnobId || isControllerKnob(id);
    case ControlKind::Combo:
        return findCombo(id) != nullptr;
    case ControlKind::Button:
        return findButton(id) != nullptr;
    case ControlKind::Label:
    case ControlKind::Keyboard:
        break;
    }
    return true; // nothing is expected of them
}

// The start of the encoded bytes: six bits a character, lowest first.
std::string decodedStart(std::string_view text) {
    constexpr std::string_view alphabet = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+";
    std::string bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char c : text.substr(0, 16)) {
        const auto value = alphabet.find(c);
        if (value == std::string_view::npos) break;
        bits |= static_cast<unsigned>(value) << count;
        count += 6;
        if (count >= 8) bytes += static_cast<char>(bits & 0xFF), bits >>= 8, count -= 8;
    }
    return bytes;
}

class LayoutCheck {
  public:
    LayoutCheck(const LayoutElements& elements, Findings& findings)
        : elements_(elements.list)
        , findings_(findings) {}

    void run() {
        const LayoutElement& root = elements_.front();
        if (!equalIgnoringCase(root.tag, "player"))
            return add(Finding::Severity::Error, root,
                       "the outermost element is <" + root.tag + ">, not <player>: no panel is shown");
        width_ = number(root, "width").value_or(600);
        height_ = number(root, "height").value_or(250);
        for (const LayoutElement& each : elements_)
            if (isChildOf(each, "images")) image(each);
        for (std::size_t i = 1; i < elements_.size(); ++i)
            if (elements_[i].parent == 0) child(elements_[i]);
    }

  private:
    void add(Finding::Severity severity, const LayoutElement& element, const std::string& what) {
        findings_.push_back({severity, "layout, line " + std::to_string(element.line), what});
    }
    void error(const LayoutElement& element, const std::string& what) {
        add(Finding::Severity::Error, element, what);
    }
    void warn(const LayoutElement& element, const std::string& what) {
        add(Finding::Severity::Warning, element, what);
    }

    bool isChildOf(const LayoutElement& element, std::string_view tag) const {
        return element.parent > 0 &&
               equalIgnoringCase(elements_[static_cast<std::size_t>(element.parent)].tag, tag);
    }

    std::optional<int> number(const LayoutElement& element, std::string_view name) {
        const std::string* text = element.find(name);
        if (!text) return {};
        const auto value = wholeNumber(*text);
        if (!value) error(element, std::string(name) + "=\"" + *text + "\" is no whole number");
        return value;
    }

    void image(const LayoutElement& element) {
        const auto id = wholeNumber(element.tag);
        if (!id) return error(element, "an image's tag must be its number, not <" + element.tag + ">");
        if (!images_.insert(*id).second)
            warn(element, "image " + element.tag + " is there already: the first one is used");
        const std::string text =
            element.text.substr(std::min(element.text.size(), element.text.find_first_not_of(" \t\r\n")));
        const auto dot = text.find('.');
        const auto count = wholeNumber(std::string_view(text).substr(0, std::min(dot, text.size())));
        if (dot == std::string::npos || !count || *count < 1)
            return error(element,
                         "image " + element.tag + " does not begin with its number of bytes and a dot");
        if (static_cast<std::size_t>(*count) > (text.size() - dot - 1) * 6 / 8)
            return error(element, "image " + element.tag + " has fewer bytes than it says");
        const std::string start = decodedStart(std::string_view(text).substr(dot + 1));
        if (!start.starts_with("\x89PNG") && !start.starts_with("\xFF\xD8") && !start.starts_with("GIF8"))
            error(element, "image " + element.tag + " is no PNG, JPEG or GIF");
    }

    void child(const LayoutElement& element) {
        if (equalIgnoringCase(element.tag, "images")) return;
        const ControlTag* control = controlOf(element.tag);
        if (!control) return warn(element, "there is no control <" + element.tag + ">: it is left out");
        attributes(element, control->kind);
        bounds(element);
        reference(element, control->kind);
        if (control->kind == ControlKind::Keyboard) keys(element);
    }

    void attributes(const LayoutElement& element, ControlKind kind) {
        std::set<std::string> seen;
        for (const auto& [name, value] : element.attributes) {
            if (!seen.insert(name).second) warn(element, "the attribute " + name + " is given twice");
            const bool isKnown =
                std::any_of(std::begin(controlAttributes), std::end(controlAttributes),
                            [&](std::string_view known) { return equalIgnoringCase(known, name); });
            if (isKnown) continue;
            if (const auto id = wholeNumber(name))
                colour(element, kind, *id, value);
            else
                warn(element, "there is no attribute " + name);
        }
    }

    void colour(const LayoutElement& element, ControlKind kind, int name, const std::string& value) {
        const auto known = std::find_if(std::begin(layoutColours), std::end(layoutColours),
                                        [&](const auto& c) { return c.id + layoutColourOffset == name; });
        if (known == std::end(layoutColours))
            return error(element, std::to_string(name) + " is no colour that a layout can set");
        if (known->kind != kind)
            warn(element, std::to_string(name) + " is a colour of " + std::string(nameOf(known->kind)) +
                              "s: a " + std::string(nameOf(kind)) + " does not show it");
        if (!isColour(value))
            error(element,
                  std::to_string(name) + "=\"" + value + "\" is no colour of eight hex digits (ARGB)");
    }

    void bounds(const LayoutElement& element) {
        const int x = number(element, "x").value_or(0), y = number(element, "y").value_or(0);
        const int width = number(element, "width").value_or(50),
                  height = number(element, "height").value_or(50);
        if (width < 1 || height < 1) return error(element, "the " + element.tag + " has no size");
        // 64 bits: the numbers are anybody's
        const auto right = static_cast<long long>(x) + width, bottom = static_cast<long long>(y) + height;
        if (x >= width_ || y >= height_ || right <= 0 || bottom <= 0)
            error(element, "the " + element.tag + " lies outside the panel");
        else if (x < 0 || y < 0 || right > width_ || bottom > height_)
            warn(element, "the " + element.tag + " reaches out of the panel");
    }

    void reference(const LayoutElement& element, ControlKind kind) {
        const auto id = number(element, "2");
        if (!drivesSomething(kind, id.value_or(-1)))
            error(element, id ? "a " + element.tag + " with id " + std::to_string(*id) + " drives nothing"
                              : "a " + element.tag + " without an id (attribute 2) drives nothing");
        if (kind != ControlKind::Knob && kind != ControlKind::Button) return;
        const auto image = number(element, "1");
        const bool isBuiltIn = kind == ControlKind::Button && image == builtInButtonImage;
        if (image && !images_.contains(*image) && !isBuiltIn)
            error(element, "there is no image " + std::to_string(*image));
    }

    void keys(const LayoutElement& element) {
        const std::string* text = element.find("4");
        if (!text) return;
        const auto comma = std::min(text->find(','), text->size());
        const auto first = wholeNumber(std::string_view(*text).substr(0, comma));
        const auto last = wholeNumber(std::string_view(*text).substr(std::min(comma + 1, text->size())));
        if (!first || !last || *first < 0 || *last > 127 || *first > *last)
            error(element, "4=\"" + *text + "\" is no range of keys like \"36,95\"");
    }

    const std::vector<LayoutElement>& elements_;
    Findings& findings_;
    int width_ = 0, height_ = 0;
    std::set<int> images_;
};

} // namespace

void checkLayout(std::string_view layout, Findings& findings) {
    const LayoutElements elements = readLayoutElements(layout);
    if (elements.fault)
        findings.push_back({Finding::Severity::Error, "layout, line " + std::to_string(elements.fault->line),
                            elements.fault->what + ": no panel is shown"});
    else
        LayoutCheck(elements, findings).run();
}

} // namespace zarno

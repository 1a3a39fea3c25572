// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/XmlGuard.h"

#include "data/Limits.h"

#include <juce_core/juce_core.h>

namespace zarno {
namespace {

// A name's characters as the parser sees them.
bool isNameCharacter(juce::juce_wchar c) {
    if (c >= 128 && c < 160) return false;
    return juce::CharacterFunctions::isLetterOrDigit(c) || c == '_' || c == '-' || c == ':' || c == '.';
}

// Follows the parser through well-formed and malformed text alike: it goes on after most errors, and only
// then says that there was one.
class Walk {
  public:
    explicit Walk(std::string_view text)
        : text_(text) {}

    const char* refusal() {
        skipBlanks();
        element();
        while (!ended_ && depth_ > 0)
            content();
        return refusal_;
    }

  private:
    bool at(std::string_view what) const { return text_.substr(position_, what.size()) == what; }
    char here() const { return position_ < text_.size() ? text_[position_] : '\0'; }
    void end() { ended_ = true; }
    void refuse(const char* why) {
        refusal_ = why;
        end();
    }

    void leave() {
        if (--depth_ < 0) end();
    }

    void skipPast(std::string_view what) {
        const auto found = text_.find(what, position_);
        if (found == std::string_view::npos) return end();
        position_ = found + what.size();
    }

    // Blanks and comments, allowed inside tags too, and processing instructions. The parser never comes back
    // from such an instruction with text behind it inside an element.
    void skipBlanks() {
        while (!ended_) {
            const juce::CharPointer_UTF8 start(text_.data() + position_);
            position_ +=
                static_cast<std::size_t>(start.findEndOfWhitespace().getAddress() - start.getAddress());
            if (at("<!--")) {
                position_ += 4;
                skipPast("-->");
            } else if (at("<?")) {
                if (elements_ > 0) return refuse("a processing instruction is not allowed here");
                position_ += 2;
                skipPast("?>");
            } else {
                break;
            }
        }
        if (position_ >= text_.size()) end();
    }

    void skipCharacter() {
        juce::CharPointer_UTF8 character(text_.data() + position_);
        ++character;
        position_ = static_cast<std::size_t>(character.getAddress() - text_.data());
    }

    bool skipName() {
        juce::CharPointer_UTF8 character(text_.data() + position_);
        const char* start = character.getAddress();
        while (isNameCharacter(*character))
            ++character;
        position_ += static_cast<std::size_t>(character.getAddress() - start);
        return character.getAddress() != start;
    }

    void reference() {
        for (const std::string_view name : {"&amp;", "&quot;", "&apos;", "&lt;", "&gt;"})
            if (juce::CharPointer_UTF8(text_.data() + position_)
                    .compareIgnoreCaseUpTo(juce::CharPointer_UTF8(name.data()),
                                           static_cast<int>(name.size())) == 0) {
                position_ += name.size();
                return;
            }
        const auto close = text_.substr(position_, 12).find(';');
        if (!at("&#") || close == std::string_view::npos) return refuse("entities are not allowed");
        const std::string_view number = text_.substr(position_ + 2, close - 2);
        const bool isHex = !number.empty() && (number[0] == 'x' || number[0] == 'X');
        const std::string_view digits = isHex ? number.substr(1) : number;
        if (digits.empty() || digits.find_first_not_of(isHex ? "0123456789abcdefABCDEF" : "0123456789") !=
                                  std::string_view::npos)
            return refuse("illegal character reference");
        const auto code = std::stoull(std::string(digits), nullptr, isHex ? 16 : 10);
        if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
            return refuse("illegal character reference");
        position_ += close + 1;
    }

    void quoted() {
        const char quote = text_[position_++];
        for (;;) {
            if (ended_ || position_ >= text_.size()) return end();
            if (here() == quote) break;
            if (here() == '&')
                reference();
            else
                ++position_;
        }
        ++position_;
    }

    // One attribute; false when the parser takes the tag for ended here.
    bool attribute() {
        if (++attributes_ > limits::xmlAttributes || ++attributesHere_ > limits::elementAttributes) {
            refuse("too many attributes");
            return false;
        }
        skipBlanks();
        if (ended_) return false;
        const bool hasValue = here() == '=';
        skipCharacter();
        if (!hasValue) return false;
        skipBlanks();
        if (ended_ || (here() != '"' && here() != '\'')) return false;
        quoted();
        return !ended_;
    }

    void element() {
        if (ended_) return;
        if (at("<!DOCTYPE")) return refuse("a document type is not allowed");
        if (here() != '<') return end();
        ++position_;
        if (!skipName()) {
            skipBlanks();
            if (ended_) return;
            if (!skipName())
                return leave(); // the parser gives the element around it up, and reads on behind that
        }
        if (++elements_ > limits::xmlElements) return refuse("too many elements");
        attributesHere_ = 0;
        for (;;) {
            skipBlanks();
            if (ended_) return;
            if (at("/>")) {
                position_ += 2;
                return;
            }
            if (here() == '>') {
                ++position_;
                if (++depth_ > limits::xmlNesting) refuse("elements are nested too deeply");
                return;
            }
            if (!skipName() || !attribute())
                return; // an error, but the parser reads on in the element around it
        }
    }

    // One piece of what stands between an element's tags.
    void content() {
        skipBlanks();
        if (ended_) return;
        if (at("</")) {
            const auto close = text_.find('>', position_);
            if (close != std::string_view::npos) position_ = close + 1;
            leave();
        } else if (at("<![CDATA[")) {
            position_ += 9;
            skipPast("]]>");
        } else if (here() == '<') {
            element();
        } else if (here() == '&') {
            reference();
        } else {
            const auto next = text_.find_first_of("<&", position_);
            if (next == std::string_view::npos) return end();
            position_ = next;
        }
    }

    std::string_view text_;
    std::size_t position_ = 0;
    int depth_ = 0, elements_ = 0, attributes_ = 0;
    int attributesHere_ = 0; // of the element whose tag is being read
    bool ended_ = false;
    const char* refusal_ = nullptr;
};

} // namespace

const char* refuseXml(std::string_view text) {
    return Walk(text).refusal();
}

} // namespace zarno

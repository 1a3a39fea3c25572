// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/check/LayoutElements.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace zarno {
namespace {

constexpr std::string_view blanks = " \t\r\n";

bool isNameCharacter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 128 || std::isalnum(byte) || c == '_' || c == '-' || c == ':' || c == '.';
}

std::string withoutEntities(std::string_view text) {
    constexpr std::pair<std::string_view, char> entities[] = {
        {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
    std::string plain;
    while (!text.empty()) {
        std::size_t used = 1;
        char c = text.front();
        for (const auto& [name, character] : entities)
            if (text.starts_with(name)) used = name.size(), c = character;
        plain += c;
        text.remove_prefix(used);
    }
    return plain;
}

class Reader {
  public:
    explicit Reader(std::string_view text)
        : text_(text) {}

    LayoutElements read() {
        while (!out_.fault && position_ < text_.size())
            piece();
        if (!out_.fault && open_ >= 0)
            fail("the element <" + out_.list[static_cast<std::size_t>(open_)].tag + "> is not closed");
        if (!out_.fault && out_.list.empty()) fail("there is no element");
        return std::move(out_);
    }

  private:
    void fail(const std::string& what) {
        if (!out_.fault) out_.fault = {line(), what};
    }
    int line() {
        line_ += static_cast<int>(std::count(text_.begin() + static_cast<std::ptrdiff_t>(counted_),
                                             text_.begin() + static_cast<std::ptrdiff_t>(position_), '\n'));
        counted_ = position_;
        return line_;
    }
    bool at(std::string_view what) const { return text_.substr(position_).starts_with(what); }
    void skipBlanks() { position_ = std::min(text_.size(), text_.find_first_not_of(blanks, position_)); }
    // Everything up to `end`, which is skipped.
    std::string_view until(std::string_view end, const char* fault) {
        const auto found = text_.find(end, position_);
        if (found == std::string_view::npos) {
            fail(fault);
            position_ = text_.size();
            return {};
        }
        const auto between = text_.substr(position_, found - position_);
        position_ = found + end.size();
        return between;
    }
    std::string name() {
        const std::size_t start = position_;
        while (position_ < text_.size() && isNameCharacter(text_[position_]))
            ++position_;
        if (position_ == start) fail("a name is missing");
        return std::string(text_.substr(start, position_ - start));
    }

    void piece() {
        if (at("<!--")) {
            until("-->", "a comment has no end");
        } else if (at("<![CDATA[")) {
            position_ += 9;
            addText(until("]]>", "a CDATA section has no end"));
        } else if (at("<?")) {
            until("?>", "a declaration has no end");
        } else if (at("<!")) {
            fail("a document type is not allowed");
        } else if (at("</")) {
            position_ += 2;
            closeElement();
        } else if (at("<")) {
            ++position_;
            element();
        } else {
            const auto next = std::min(text_.size(), text_.find('<', position_));
            addText(text_.substr(position_, next - position_));
            position_ = next;
        }
    }

    void addText(std::string_view text) {
        if (open_ >= 0)
            out_.list[static_cast<std::size_t>(open_)].text += text;
        else if (text.find_first_not_of(blanks) != std::string_view::npos && out_.list.empty())
            fail("text stands before the first element");
    }

    void closeElement() {
        const std::string tag = name();
        skipBlanks();
        if (out_.fault) return;
        if (!at(">")) return fail("a closing tag has no end");
        ++position_;
        if (open_ < 0 || out_.list[static_cast<std::size_t>(open_)].tag != tag)
            return fail("</" + tag + "> closes no open element");
        open_ = out_.list[static_cast<std::size_t>(open_)].parent;
    }

    void element() {
        LayoutElement element;
        element.line = line();
        element.parent = open_;
        element.tag = name();
        while (!out_.fault) {
            skipBlanks();
            const bool isEmpty = at("/>");
            if (isEmpty || at(">")) {
                position_ += isEmpty ? 2 : 1;
                out_.list.push_back(std::move(element));
                if (!isEmpty) open_ = static_cast<int>(out_.list.size()) - 1;
                return;
            }
            attribute(element);
        }
    }

    void attribute(LayoutElement& element) {
        const std::string attributeName = name();
        skipBlanks();
        if (out_.fault) return;
        if (!at("=")) return fail("the attribute " + attributeName + " has no value");
        ++position_;
        skipBlanks();
        if (!at("\"") && !at("'")) return fail("the value of " + attributeName + " is not in quotes");
        const char quote[] = {text_[position_++], '\0'};
        const auto value = until(quote, "a value has no closing quote");
        element.attributes.push_back({attributeName, withoutEntities(value)});
    }

    std::string_view text_;
    std::size_t position_ = 0, counted_ = 0;
    int line_ = 1;
    int open_ = -1; // element whose content is being read
    LayoutElements out_;
};

} // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

const std::string* LayoutElement::find(std::string_view name) const {
    for (const Attribute& attribute : attributes)
        if (equalIgnoringCase(attribute.name, name)) return &attribute.value;
    return nullptr;
}

LayoutElements readLayoutElements(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    return Reader(text).read();
}

} // namespace zarno

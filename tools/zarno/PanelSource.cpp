// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/PanelSource.h"

#include "tools/zarno/MakerError.h"
#include "tools/zarno/PanelNames.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>

namespace zarno {
namespace {

constexpr std::string_view alphabet = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+";
constexpr std::string_view blanks = " \t\r\n";

using TurnAttribute =
    std::function<LayoutAttribute(std::string_view tag, const LayoutAttribute&, std::size_t at)>;

// Copies XML and lets others turn its attributes; comments, blanks, quotes and all that is no start tag stay.
class Copier {
  public:
    Copier(std::string_view text, TurnAttribute turn)
        : text_(text)
        , turn_(std::move(turn)) {}

    std::string copy() {
        while (at_ < text_.size()) {
            const bool isTag = text_[at_] == '<' && at_ + 1 < text_.size() && isNameStart(text_[at_ + 1]);
            if (text_.substr(at_).starts_with("<!--"))
                copyUntil(text_.find("-->", at_));
            else if (text_.substr(at_).starts_with("<![CDATA["))
                copyUntil(text_.find("]]>", at_));
            else if (isTag)
                copyTag();
            else
                out_ += text_[at_++];
        }
        return std::move(out_);
    }

  private:
    static bool isNameStart(char c) {
        return c != '/' && c != '!' && c != '?' && blanks.find(c) == std::string_view::npos;
    }
    void copyUntil(std::size_t end) {
        end = std::min(end, text_.size());
        out_ += text_.substr(at_, end - at_);
        at_ = end;
        if (at_ < text_.size()) out_ += text_[at_++];
    }
    void copyTag() {
        const auto end = std::min(text_.find_first_of(" \t\r\n/>", at_ + 1), text_.size());
        const std::string_view tag = text_.substr(at_ + 1, end - at_ - 1);
        copyTo(end);
        while (at_ < text_.size() && text_[at_] != '>' && copyAttribute(tag)) {
        }
    }
    void copyTo(std::size_t end) {
        out_ += text_.substr(at_, end - at_);
        at_ = end;
    }
    // Blanks, a name, an equals sign and a quoted value; false, with nothing copied behind the blanks, for
    // all else.
    bool copyAttribute(std::string_view tag) {
        copyTo(std::min(text_.find_first_not_of(blanks, at_), text_.size()));
        const auto nameEnd = text_.find_first_of(" \t\r\n=/>", at_);
        if (nameEnd == std::string_view::npos || nameEnd == at_) return false;
        const auto equals = text_.find_first_not_of(blanks, nameEnd);
        if (equals == std::string_view::npos || text_[equals] != '=') return false;
        const auto quote = text_.find_first_not_of(blanks, equals + 1);
        if (quote == std::string_view::npos || (text_[quote] != '"' && text_[quote] != '\'')) return false;
        const auto close = text_.find(text_[quote], quote + 1);
        if (close == std::string_view::npos) return false;
        const LayoutAttribute given{std::string(text_.substr(at_, nameEnd - at_)),
                                    std::string(text_.substr(quote + 1, close - quote - 1))};
        const LayoutAttribute turned = turn_(tag, given, at_);
        out_ += turned.name;
        out_ += text_.substr(nameEnd, quote + 1 - nameEnd);
        out_ += turned.value;
        at_ = close;
        out_ += text_[at_++];
        return true;
    }

    const std::string_view text_;
    const TurnAttribute turn_;
    std::size_t at_ = 0;
    std::string out_;
};

std::string extensionOf(const std::vector<std::uint8_t>& bytes) {
    const std::string start(
        bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(bytes.size(), 4)));
    if (start == "\x89PNG") return ".png";
    if (start.starts_with("\xff\xd8")) return ".jpg";
    return start == "GIF8" ? ".gif" : ".bin";
}

bool isNumber(std::string_view text) {
    return !text.empty() && text.size() < 6 && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Replaces every <N>picture</N> by <picture number="N" file="..."/>.
std::string takePicturesOut(std::string_view layout, PanelSource& source,
                            std::map<std::string, std::string>& files) {
    std::string out;
    std::size_t at = 0;
    for (;;) {
        const auto open = layout.find('<', at);
        const auto close = open == std::string_view::npos ? open : layout.find('>', open);
        if (close == std::string_view::npos) break;
        const std::string number(layout.substr(open + 1, close - open - 1));
        const std::string ending = "</" + number + ">";
        const auto end = isNumber(number) ? layout.find('<', close) : std::string_view::npos;
        const bool isPicture = end != std::string_view::npos && layout.substr(end).starts_with(ending);
        const auto bytes =
            isPicture ? pictureFromText(layout.substr(close + 1, end - close - 1)) : std::nullopt;
        if (!bytes || files.count(number) != 0) {
            out += layout.substr(at, open + 1 - at);
            at = open + 1;
            continue;
        }
        files[number] = "picture-" + number + extensionOf(*bytes);
        source.pictures.push_back({files[number], *bytes});
        out += layout.substr(at, open - at);
        out += "<picture number=\"" + number + "\" file=\"" + files[number] + "\"/>";
        at = end + ending.size();
    }
    return out.append(layout.substr(at));
}

// Compiles one source.
class Compiler {
  public:
    Compiler(std::string_view xml, const std::string& file, const ReadPicture& readPicture)
        : xml_(xml)
        , file_(file)
        , readPicture_(readPicture) {}

    std::string compile();

  private:
    struct Listed {
        std::size_t begin, end;
        std::string number, file;
    };

    void fault(std::size_t at, const std::string& what);
    std::vector<Listed> listedIn(std::string_view text);
    std::string element(const std::string& number, const std::string& file, std::size_t at);
    std::string numberOf(const std::string& file, std::size_t at);
    void addUnlisted(std::string& layout) const;

    const std::string_view xml_;
    const std::string& file_;
    const ReadPicture& readPicture_;
    std::map<std::string, std::string> numbers_; // by file
    std::set<std::string> taken_;
    std::string unlisted_; // elements of pictures that only controls name
    std::vector<std::string> faults_;
};

void Compiler::fault(std::size_t at, const std::string& what) {
    const std::string_view before = xml_.substr(0, at);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto column = at - (before.rfind('\n') + 1) + 1;
    faults_.push_back(file_ + ':' + std::to_string(line) + ':' + std::to_string(column) + ": " + what);
}

// "<N>3.abc+</N>"
std::string Compiler::element(const std::string& number, const std::string& file, std::size_t at) {
    try {
        return '<' + number + '>' + pictureToText(readPicture_(file)) + "</" + number + '>';
    } catch (const MakerError& error) {
        fault(at, error.what());
        return {};
    }
}

std::string Compiler::numberOf(const std::string& file, std::size_t at) {
    if (isNumber(file)) return file;
    const auto [found, isNew] = numbers_.try_emplace(file);
    if (isNew) {
        int number = 1;
        while (taken_.count(std::to_string(number)) != 0)
            ++number;
        found->second = std::to_string(number);
        taken_.insert(found->second);
        unlisted_ += element(found->second, file, at) + '\n';
    }
    return found->second;
}

// Every <picture number="N" file="..."/>.
std::vector<Compiler::Listed> Compiler::listedIn(std::string_view text) {
    constexpr std::string_view start = "<picture number=\"", middle = "\" file=\"", ending = "\"/>";
    std::vector<Listed> all;
    for (auto open = text.find(start); open != std::string_view::npos; open = text.find(start, open + 1)) {
        const auto numberBegin = open + start.size();
        const auto numberEnd = std::min(text.find('"', numberBegin), text.size());
        const auto fileBegin = std::min(numberEnd + middle.size(), text.size());
        const auto fileEnd = std::min(text.find('"', fileBegin), text.size());
        Listed listed{open, fileEnd + ending.size(),
                      std::string(text.substr(numberBegin, numberEnd - numberBegin)),
                      std::string(text.substr(fileBegin, fileEnd - fileBegin))};
        if (text.substr(numberEnd).starts_with(middle) && text.substr(fileEnd).starts_with(ending) &&
            isNumber(listed.number))
            all.push_back(std::move(listed));
        else
            fault(open, "a picture is written as <picture number=\"1\" file=\"knob.png\"/>");
    }
    return all;
}

// Into the list of pictures, or a new one at the start of the panel.
void Compiler::addUnlisted(std::string& layout) const {
    if (unlisted_.empty()) return;
    if (const auto list = layout.find("</images>"); list != std::string::npos) {
        layout.insert(list, unlisted_);
        return;
    }
    const auto player = layout.find("<player");
    const auto end = player == std::string::npos ? player : layout.find('>', player);
    if (end != std::string::npos) layout.insert(end + 1, "\n<images>\n" + unlisted_ + "</images>");
}

std::string Compiler::compile() {
    std::vector<std::string> elements;
    for (const Listed& listed : listedIn(xml_)) {
        numbers_.emplace(listed.file, listed.number);
        taken_.insert(listed.number);
        elements.push_back(element(listed.number, listed.file, listed.begin));
    }
    const auto turn = [&](std::string_view tag, const LayoutAttribute& given, std::size_t at) {
        LayoutAttribute turned = given;
        try {
            turned = layoutAttribute(tag, given);
        } catch (const MakerError& error) {
            fault(at, error.what());
        }
        if (turned.name == "1" && given.name == "picture") turned.value = numberOf(given.value, at);
        return turned;
    };
    const std::string turned = Copier(xml_, turn).copy();
    if (!faults_.empty()) throw MakerErrors(file_, faults_);

    std::string layout;
    std::size_t at = 0;
    const auto listed = listedIn(turned);
    for (std::size_t i = 0; i < listed.size() && i < elements.size(); ++i) {
        layout += turned.substr(at, listed[i].begin - at) + elements[i];
        at = listed[i].end;
    }
    layout += turned.substr(at);
    addUnlisted(layout);
    return layout;
}

} // namespace

std::string pictureToText(const std::vector<std::uint8_t>& bytes) {
    std::string text = std::to_string(bytes.size()) + '.';
    const std::size_t bits = bytes.size() * 8;
    for (std::size_t bit = 0; bit < bits; bit += 6) {
        unsigned value = bytes[bit / 8];
        if (bit / 8 + 1 < bytes.size()) value |= static_cast<unsigned>(bytes[bit / 8 + 1]) << 8;
        text += alphabet[value >> bit % 8 & 63];
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> pictureFromText(std::string_view text) {
    std::size_t size = 0;
    const char* end = text.data() + text.size();
    const auto [point, failed] = std::from_chars(text.data(), end, size);
    if (failed != std::errc() || point == end || *point != '.' || size > text.size()) return std::nullopt;
    const std::string_view digits(point + 1, static_cast<std::size_t>(end - point - 1));
    std::vector<std::uint8_t> bytes(size);
    for (std::size_t i = 0; i < digits.size() && i * 6 < size * 8; ++i) {
        const auto value = alphabet.find(digits[i]);
        if (value == std::string_view::npos) return std::nullopt;
        const std::size_t byte = i * 6 / 8;
        const unsigned shifted = static_cast<unsigned>(value) << i * 6 % 8;
        bytes[byte] = static_cast<std::uint8_t>(bytes[byte] | shifted);
        if (byte + 1 < size) bytes[byte + 1] = static_cast<std::uint8_t>(bytes[byte + 1] | shifted >> 8);
    }
    if (pictureToText(bytes) != text) return std::nullopt;
    return bytes;
}

std::optional<PanelSource> panelSourceOf(std::string_view layout) {
    PanelSource source;
    std::map<std::string, std::string> files;
    const std::string withoutPictures = takePicturesOut(layout, source, files);
    source.xml =
        Copier(withoutPictures, [&](std::string_view tag, const LayoutAttribute& given, std::size_t) {
            LayoutAttribute turned = readableAttribute(tag, given);
            const auto file = files.find(given.value);
            if (turned.name != "picture" || given.name != "1") return turned;
            if (file != files.end()) return LayoutAttribute{"picture", file->second};
            return isNumber(given.value) ? turned : given;
        }).copy();
    const auto find = [&](const std::string& file) {
        for (const PanelSource::Picture& picture : source.pictures)
            if (picture.file == file) return picture.bytes;
        throw MakerError(file, "there is no such picture");
    };
    try {
        if (layoutFromSource(source.xml, "panel.xml", find) != layout) return std::nullopt;
    } catch (const MakerError&) {
        return std::nullopt;
    }
    return source;
}

std::string layoutFromSource(std::string_view xml, const std::string& file, const ReadPicture& readPicture) {
    return Compiler(xml, file, readPicture).compile();
}

} // namespace zarno

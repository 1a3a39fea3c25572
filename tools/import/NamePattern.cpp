// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/NamePattern.h"

#include "tools/import/LowerCase.h"
#include "tools/import/NoteNames.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <iterator>
#include <regex>
#include <vector>

namespace zarno {
namespace {

std::optional<int> wholeNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || text.front() == '-') return std::nullopt;
    return number;
}

std::optional<int> dynamics(const std::string& word) {
    static constexpr std::string_view words[] = {"ppp", "pp", "p", "mp", "mf", "f", "ff", "fff"};
    const auto found = std::find(std::begin(words), std::end(words), word);
    return found == std::end(words) ? std::nullopt
                                    : std::optional(static_cast<int>(found - std::begin(words)) + 1);
}

std::optional<int> velocityFrom(const std::string& text) {
    const auto number = wholeNumber(text);
    return number ? number : dynamics(text);
}

// "cs4" is "c#4", as file names often have it.
std::optional<int> noteFrom(std::string word) {
    if (word.size() > 2 && word[1] == 's') word[1] = '#';
    return keyFromText(word);
}

std::optional<int> behind(const std::string& word, std::string_view prefix) {
    if (!word.starts_with(prefix) || word.size() == prefix.size()) return std::nullopt;
    return wholeNumber(std::string_view(word).substr(prefix.size()));
}

std::optional<int> velocityOf(const std::string& word) {
    const auto velocity = behind(word, "vel");
    return velocity ? velocity : behind(word, "v");
}

// Where a velocity is written out, a single "p" or "f" is part of the name.
bool takeWord(const std::string& word, bool dynamicsCount, NameParts& parts) {
    const auto take = [](std::optional<int>& to, std::optional<int> from) {
        if (to || !from) return false;
        to = from;
        return true;
    };
    if (take(parts.robin, behind(word, "rr")) || take(parts.robin, behind(word, "robin"))) return true;
    if (take(parts.velocity, velocityOf(word))) return true;
    if (dynamicsCount && take(parts.velocity, dynamics(word))) return true;
    const auto number = wholeNumber(word);
    return number ? take(parts.number, number) : take(parts.key, noteFrom(word));
}

std::vector<std::string> splitWords(const std::string& stem) {
    std::vector<std::string> words(1);
    for (std::size_t i = 0; i < stem.size(); ++i) {
        // A minus before an octave belongs to the note: "C-1".
        const bool isOctave = stem[i] == '-' && words.back().size() <= 2 && i + 1 < stem.size() &&
                              std::isdigit(static_cast<unsigned char>(stem[i + 1])) != 0 &&
                              noteFrom(lowerCase(words.back()) + "0");
        if (std::string_view(" _-.,()[]").find(stem[i]) == std::string_view::npos || isOctave)
            words.back() += stem[i];
        else if (!words.back().empty())
            words.emplace_back();
    }
    if (words.back().empty()) words.pop_back();
    return words;
}

NameParts readWords(const std::string& stem) {
    NameParts parts;
    const auto words = splitWords(stem);
    const bool dynamicsCount = std::none_of(words.begin(), words.end(), [](const std::string& word) {
        return velocityOf(lowerCase(word)).has_value();
    });
    std::vector<std::string> others;
    for (const std::string& word : words)
        if (!takeWord(lowerCase(word), dynamicsCount, parts)) others.push_back(word);
    for (const std::string& word : others) {
        const bool saysTheNumberAgain = parts.number && noteFrom(lowerCase(word) + '4'); // "036-c"
        if (!saysTheNumberAgain) parts.name += (parts.name.empty() ? "" : " ") + word;
    }
    return parts;
}

} // namespace

struct NamePattern::Compiled {
    std::regex regex;
    std::vector<std::string> placeholders; // of the regex's groups
};

NamePattern::~NamePattern() = default;

NamePattern::NamePattern(const std::string& pattern) {
    if (pattern.empty()) return;
    compiled_ = std::make_unique<Compiled>();
    std::string regex;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const std::size_t close = pattern[i] == '{' ? pattern.find('}', i) : std::string::npos;
        if (close == std::string::npos) {
            if (std::isalnum(static_cast<unsigned char>(pattern[i])) == 0) regex += '\\';
            regex += pattern[i];
            continue;
        }
        const std::string placeholder = pattern.substr(i + 1, close - i - 1);
        if (placeholder == "key")
            regex += "([a-g][#bs]?-?[0-9]{1,2}|[0-9]{1,3})";
        else if (placeholder == "velocity")
            regex += "([0-9]{1,3}|p{1,3}|mp|mf|f{1,3})";
        else if (placeholder == "robin")
            regex += "([0-9]{1,4})";
        else if (placeholder == "name" || placeholder.empty())
            regex += "(.*?)";
        else
            throw MakerError("--pattern", "there is no {" + placeholder +
                                              "}, only {key}, {velocity}, {robin}, {name} and {}");
        compiled_->placeholders.push_back(placeholder);
        i = close;
    }
    try {
        compiled_->regex.assign(regex, std::regex::icase);
    } catch (const std::regex_error&) {
        throw MakerError("--pattern", "this cannot be understood");
    }
}

std::optional<NameParts> NamePattern::read(const std::string& stem) const {
    if (!compiled_) return readWords(stem);
    std::smatch match;
    if (!std::regex_match(stem, match, compiled_->regex)) return std::nullopt;
    NameParts parts;
    for (std::size_t i = 0; i < compiled_->placeholders.size(); ++i) {
        const std::string& placeholder = compiled_->placeholders[i];
        const std::string text = match[i + 1].str();
        if (placeholder == "key") parts.key = noteFrom(lowerCase(text));
        if (placeholder == "velocity") parts.velocity = velocityFrom(lowerCase(text));
        if (placeholder == "robin") parts.robin = wholeNumber(text);
        if (placeholder == "name") parts.name = text;
    }
    return parts;
}

} // namespace zarno

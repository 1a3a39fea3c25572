// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzDocument.h"

#include "tools/import/LowerCase.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace zarno {
namespace {

bool isSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool isNameCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string currentName(std::string name) {
    static constexpr std::array<std::array<const char*, 2>, 11> spellings = {{{"loopmode", "loop_mode"},
                                                                              {"filtype", "fil_type"},
                                                                              {"fil1_type", "fil_type"},
                                                                              {"lorandom", "lorand"},
                                                                              {"loopstart", "loop_start"},
                                                                              {"loopend", "loop_end"},
                                                                              {"offby", "off_by"},
                                                                              {"gain", "volume"},
                                                                              {"pitch", "tune"},
                                                                              {"loop_count", "count"},
                                                                              {"polyphony_group", "group"}}};
    for (const auto& [old, current] : spellings)
        if (name == old) return current;
    for (const std::string_view numbered : {"lfo", "eg", "var"}) { // "lfo01_freq" is "lfo1_freq"
        if (!name.starts_with(numbered)) continue;
        std::size_t zeros = numbered.size();
        while (zeros + 1 < name.size() && name[zeros] == '0' &&
               std::isdigit(static_cast<unsigned char>(name[zeros + 1])) != 0)
            ++zeros;
        name.erase(numbered.size(), zeros - numbered.size());
    }
    return name;
}

// A value may hold spaces: it ends where the next opcode or header begins.
std::size_t endOfValue(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '<') return i;
        if (!isSpace(text[i])) continue;
        std::size_t next = i;
        while (next < text.size() && isSpace(text[next]))
            ++next;
        std::size_t end = next;
        while (end < text.size() && isNameCharacter(text[end]))
            ++end;
        if (end > next && end < text.size() && text[end] == '=') return i;
        i = end - 1; // the word belongs to the value
        if (end == next) i = next - 1;
    }
    return text.size();
}

bool mayHoldSpaces(const std::string& name) {
    return name == "sample" || name == "default_path" || name == "image" ||
           name.find("label") != std::string::npos;
}

class SectionParser {
  public:
    explicit SectionParser(ImportReport& report)
        : report_(report) {}

    void parse(const SfzLine& line) {
        std::string_view rest = trimmed(line.text);
        while (!rest.empty()) {
            if (rest.front() == '<')
                header(rest, line);
            else
                opcode(rest, line);
            rest = trimmed(rest);
        }
    }
    std::vector<SfzSection> takeSections() { return std::move(sections_); }

  private:
    void header(std::string_view& rest, const SfzLine& line) {
        const std::size_t end = rest.find('>');
        if (end == std::string_view::npos) {
            report_.add("header without its end", "ignored", line.place());
            rest = {};
            return;
        }
        sections_.push_back({lowerCase(std::string(trimmed(rest.substr(1, end - 1)))), line.place(), {}});
        rest.remove_prefix(end + 1);
    }

    void opcode(std::string_view& rest, const SfzLine& line) {
        const std::size_t stop = std::min(rest.find_first_of("=<"), rest.size());
        std::string_view name = trimmed(rest.substr(0, stop));
        const auto space = std::find_if(name.rbegin(), name.rend(), isSpace);
        name.remove_prefix(static_cast<std::size_t>(name.rend() - space)); // words before it mean nothing
        const bool isOpcode = stop < rest.size() && rest[stop] == '=' && !name.empty();
        if (!isOpcode || space != name.rend()) report_.add("text that is no opcode", "ignored", line.place());
        const bool isAssignment = stop < rest.size() && rest[stop] == '=';
        rest.remove_prefix(stop + (isAssignment ? 1 : 0));
        if (!isAssignment) return;
        const std::size_t end = endOfValue(rest);
        if (isOpcode) add(currentName(lowerCase(std::string(name))), trimmed(rest.substr(0, end)), line);
        rest.remove_prefix(end);
    }

    void add(const std::string& name, std::string_view value, const SfzLine& line) {
        if (!mayHoldSpaces(name)) {
            const auto space = std::find_if(value.begin(), value.end(), isSpace);
            if (space != value.end()) report_.add("text that is no opcode", "ignored", line.place());
            value = value.substr(0, static_cast<std::size_t>(space - value.begin()));
        }
        if (sections_.empty()) sections_.push_back({"", line.place(), {}});
        sections_.back().opcodes.push_back({name, std::string(value)});
    }

    ImportReport& report_;
    std::vector<SfzSection> sections_;
};

} // namespace

std::vector<SfzSection> parseSfzSections(const std::vector<SfzLine>& lines, ImportReport& report) {
    SectionParser parser(report);
    for (const SfzLine& line : lines)
        parser.parse(line);
    return parser.takeSections();
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/NoteNames.h"

#include <cctype>
#include <charconv>

namespace zarno {
namespace {

constexpr int lowest = -128, highest = 255;

std::optional<int> wholeNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number >= lowest && number <= highest ? std::optional(number) : std::nullopt;
}

} // namespace

std::string keyName(int key) {
    static constexpr const char* names[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
    const int pitchClass = (key % 12 + 12) % 12; // keys of damaged files may be far below 0
    return names[pitchClass] + std::to_string((key - pitchClass) / 12 - 1);
}

std::optional<int> keyFromText(std::string_view text) {
    if (const auto number = wholeNumber(text)) return number;
    if (text.size() < 2) return std::nullopt;
    static constexpr int semitones[] = {9, 11, 0, 2, 4, 5, 7}; // from A
    const int letter = std::tolower(static_cast<unsigned char>(text.front())) - 'a';
    if (letter < 0 || letter > 6) return std::nullopt;
    int key = semitones[letter];
    text.remove_prefix(1);
    if (text.front() == '#') ++key;
    if (text.front() == 'b') --key;
    if (text.front() == '#' || text.front() == 'b') text.remove_prefix(1);
    const auto octave = wholeNumber(text);
    if (!octave || *octave < -2 || *octave > 10) return std::nullopt;
    return key + 12 * (*octave + 1);
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzOpcodes.h"

#include "tools/import/NoteNames.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace zarno {

void SfzOpcodes::begin(Level level) {
    for (int within = level; within < levels; ++within)
        levels_[static_cast<std::size_t>(within)].clear();
}

// "key" is three opcodes at once, which later ones may change one by one.
void SfzOpcodes::set(Level level, const SfzOpcode& opcode) {
    auto& values = levels_[static_cast<std::size_t>(level)];
    if (opcode.name == "key")
        values["lokey"] = values["hikey"] = values["pitch_keycenter"] = opcode.value;
    else
        values[opcode.name] = opcode.value;
}

const std::string* SfzOpcodes::findAt(Level level, const std::string& name) const {
    const auto& values = levels_[static_cast<std::size_t>(level)];
    const auto found = values.find(name);
    return found == values.end() ? nullptr : &found->second;
}

const std::string* SfzOpcodes::find(const std::string& name) const {
    for (const Level level : {Start, Region, Group, Master, Global})
        if (const std::string* value = findAt(level, name)) return value;
    return nullptr;
}

std::optional<int> SfzOpcodes::wholeNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<double> SfzOpcodes::numberFrom(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<double> SfzOpcodes::number(const std::string& name) const {
    const std::string* value = find(name);
    return value ? numberFrom(*value) : std::nullopt;
}

int SfzOpcodes::integer(const std::string& name, int otherwise) const {
    constexpr double most = 1e9;
    const auto value = number(name);
    return value ? static_cast<int>(std::lround(std::clamp(*value, -most, most))) : otherwise;
}

std::optional<std::uint64_t> SfzOpcodes::frames(const std::string& name) const {
    constexpr double most = 1e15;
    const auto value = number(name);
    return value && *value >= 0.0 ? std::optional(static_cast<std::uint64_t>(std::min(*value, most)))
                                  : std::nullopt;
}

std::optional<int> SfzOpcodes::key(const std::string& name) const {
    const std::string* value = find(name);
    if (!value) return std::nullopt;
    if (const auto key = keyFromText(*value)) return key;
    const auto number = numberFrom(*value);
    return number ? std::optional(static_cast<int>(std::clamp(*number, -128.0, 255.0))) : std::nullopt;
}

std::string SfzOpcodes::text(const std::string& name, const std::string& otherwise) const {
    const std::string* value = find(name);
    return value ? *value : otherwise;
}

} // namespace zarno

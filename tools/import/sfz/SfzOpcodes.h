// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/sfz/SfzDocument.h"

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace zarno {

/// The opcodes in force for a region: its own, its group's, its master's and the global ones, the nearer
/// first; before all of them those that controllers change, as they are at the start (see SfzFold.h).
class SfzOpcodes {
  public:
    enum Level { Global, Master, Group, Region, Start, levels };

    /// Begins a section: its level and those within it start empty.
    void begin(Level level);
    void set(Level level, const SfzOpcode& opcode);

    /// The value in force, or none.
    const std::string* find(const std::string& name) const;
    /// The value of one level alone.
    const std::string* findAt(Level level, const std::string& name) const;
    bool has(const std::string& name) const { return find(name) != nullptr; }

    /// None when there is no such opcode or its value is no finite number. Text behind a number is ignored.
    std::optional<double> number(const std::string& name) const;
    double number(const std::string& name, double otherwise) const {
        return number(name).value_or(otherwise);
    }
    int integer(const std::string& name, int otherwise) const;
    /// A number of frames; none when it is negative or there is none.
    std::optional<std::uint64_t> frames(const std::string& name) const;
    /// A key as number or note name.
    std::optional<int> key(const std::string& name) const;
    std::string text(const std::string& name, const std::string& otherwise = {}) const;

    /// Calls with each name in force once, and its value.
    template <typename Function>
    void forEach(Function&& function) const {
        for (int level = Start; level >= Global; --level)
            for (const auto& [name, value] : levels_[static_cast<std::size_t>(level)])
                if (find(name) == &value) function(name, value);
    }
    /// Calls with the number and value of each opcode in force that begins with `prefix` and goes on with a
    /// number alone: the controller of "locc64".
    template <typename Function>
    void forEachNumbered(std::string_view prefix, Function&& function) const {
        forEach([&](const std::string& name, const std::string& value) {
            if (!name.starts_with(prefix)) return;
            if (const auto number = wholeNumber(std::string_view(name).substr(prefix.size())))
                function(*number, value);
        });
    }

    static std::optional<int> wholeNumber(std::string_view text);
    static std::optional<double> numberFrom(std::string_view text);

  private:
    std::array<std::map<std::string, std::string>, levels> levels_;
};

} // namespace zarno

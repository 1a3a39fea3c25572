// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

// Every field of the three records once: name, place, unit, range, choices, help. The text form of
// instruments, their reports and checks, and the documents' tables are made of it. Plain constants: any
// thread.
namespace zarno {

struct InstrumentSettings;
struct GroupRecord;
struct ZoneRecord;

enum class FieldType { Int, Frame, Float };

struct FieldRange {
    double low = -std::numeric_limits<double>::infinity();
    double high = std::numeric_limits<double>::infinity();

    /// No range holds a NaN or an infinity.
    bool holds(double value) const { return value >= low && value <= high && value - value == 0.0; }
};

/// One field of a record, under the name of its member.
struct RecordField {
    std::string_view name;
    FieldType type;
    std::size_t offset;
    std::string_view unit;                          ///< empty for numbers without one
    FieldRange range;                               ///< of values that make sense, both ends included
    std::string_view help;                          ///< a line without a full stop
    std::span<const std::string_view> choices = {}; ///< what the values 0, 1, 2 ... are called, if anything
};

/// A record's fields in file order, and where the bytes lie that no field covers.
struct RecordLayout {
    std::span<const RecordField> fields;
    std::size_t unreadOffset;
    std::size_t bytes;
    const void* defaults; ///< a record with every field at its start value
};

const RecordLayout& layoutOf(const InstrumentSettings&);
const RecordLayout& layoutOf(const GroupRecord&);
const RecordLayout& layoutOf(const ZoneRecord&);

} // namespace zarno

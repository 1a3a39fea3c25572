// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zarno {

struct InstrumentSettings;
struct GroupRecord;
struct ZoneRecord;

enum class FieldType { Int, Frame, Float };

/// One field of a record, under the name of its member.
struct RecordField {
    std::string_view name;
    FieldType type;
    std::size_t offset;
    std::string_view unit;                        ///< empty for numbers without one
    std::span<const std::string_view> texts = {}; ///< what the values 0, 1, 2 ... are called, if anything
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

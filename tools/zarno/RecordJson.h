// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Fields.h"
#include "tools/zarno/JsonObject.h"

namespace zarno {

/// One field's value: the text of an enumeration where there is one, a number, or a float's bits in hex when
/// no number says them.
Json fieldToJson(const RecordField& field, const void* record);

/// The fields of a record that differ from their defaults, and those named in `always`; then the bytes that
/// nobody reads, in hex, when one is not zero.
Json recordToJson(const RecordLayout& layout, const void* record,
                  std::span<const std::string_view> always = {});

/// How values outside their field's range are read: as a fault, or as they are.
enum class Ranges { Checked, Open };

/// Replaces the fields that `json` names.
void recordFromJson(const RecordLayout& layout, const Json& json, void* record, const std::string& where,
                    Ranges ranges, JsonFaults& faults);

/// Whether every field of the record has a value in its range.
bool isInRange(const RecordLayout& layout, const void* record);

/// "it must be from 0 to 127", for messages.
std::string rangeOf(const RecordField& field);

/// "0.5", "127": as short as it can be said.
std::string shortNumber(double value);

} // namespace zarno

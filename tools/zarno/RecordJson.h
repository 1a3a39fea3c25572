// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/zarno/JsonObject.h"
#include "tools/zarno/RecordFields.h"

namespace zarno {

/// One field's value: the text of an enumeration where there is one, a number, or a float's bits in hex when
/// no number says them.
Json fieldToJson(const RecordField& field, const void* record);

/// The fields of a record that differ from their defaults, and those named in `always`; then the bytes that
/// nobody reads, in hex, when one is not zero.
Json recordToJson(const RecordLayout& layout, const void* record,
                  std::span<const std::string_view> always = {});

/// Replaces the fields that `json` names. Throws MakerError.
void recordFromJson(const RecordLayout& layout, const Json& json, void* record, const std::string& where);

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/FieldReference.h"

#include "engine/Fields.h"
#include "engine/Records.h"
#include "tools/zarno/RecordJson.h"

#include <cmath>

namespace zarno {
namespace {

std::string rangeText(const RecordField& field) {
    std::string text;
    for (const std::string_view choice : field.choices)
        text += (text.empty() ? "" : ", ") + ('`' + std::string(choice) + '`');
    if (!text.empty()) return text;
    const FieldRange& range = field.range;
    if (std::isinf(range.low)) return field.type == FieldType::Frame ? "0 and above" : "";
    if (std::isinf(range.high)) return shortNumber(range.low) + " and above";
    return shortNumber(range.low) + " to " + shortNumber(range.high);
}

std::string startText(const RecordLayout& layout, const RecordField& field) {
    const Json value = fieldToJson(field, layout.defaults);
    if (value.is_string()) return '`' + value.get<std::string>() + '`';
    return shortNumber(value.get<double>());
}

std::string table(const std::string& title, const RecordLayout& layout) {
    std::string text =
        "### " + title + "\n\n| Field | Unit | Values | Default | Meaning |\n|---|---|---|---|---|\n";
    for (const RecordField& field : layout.fields)
        text += "| `" + std::string(field.name) + "` | " + std::string(field.unit) + " | " +
                rangeText(field) + " | " + startText(layout, field) + " | " + std::string(field.help) +
                " |\n";
    return text;
}

} // namespace

std::string fieldReference() {
    return table("Settings of the instrument", layoutOf(InstrumentSettings())) + '\n' +
           table("Settings of a group", layoutOf(GroupRecord())) + '\n' +
           table("Settings of a zone", layoutOf(ZoneRecord()));
}

} // namespace zarno

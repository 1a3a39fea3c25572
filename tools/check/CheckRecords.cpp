// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Fields.h"
#include "tools/check/InstrumentCheck.h"
#include "tools/zarno/RecordJson.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zarno {
namespace {

template <typename T>
T at(const void* record, std::size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof value);
    return value;
}

// Of the fields without named values; checkZones and checkGroups see to the others.
constexpr std::string_view checkedHere[] = {
    "streamBufferFramesStored", "polyphonyStored", "pan", "glideTime", "lfoRate", "reverbSend"};

template <typename Record>
void check(const Record& record, const std::string& place, Findings& findings) {
    const auto add = [&](const RecordField& field, const std::string& what) {
        const Json value = fieldToJson(field, &record);
        findings.push_back({Finding::Severity::Error, place,
                            std::string(field.name) + " is " +
                                (value.is_string() ? value.get<std::string>() : value.dump()) + ": " + what});
    };
    for (const RecordField& field : layoutOf(record).fields) {
        const double value = field.type == FieldType::Float ? at<float>(&record, field.offset)
                             : field.type == FieldType::Int ? at<std::int32_t>(&record, field.offset)
                                                            : 0.0;
        if (!std::isfinite(value)) add(field, "that is no number");
        if (!field.choices.empty() && !field.range.holds(value)) add(field, "there is no such choice");
        const bool isChecked =
            std::find(std::begin(checkedHere), std::end(checkedHere), field.name) != std::end(checkedHere);
        if (isChecked && std::isfinite(value) && !field.range.holds(value)) add(field, rangeOf(field));
    }
}

} // namespace

void checkRecords(const InstrumentFile& file, Findings& findings) {
    check(file.settings, "settings", findings);
    for (std::size_t g = 0; g < file.groups.size(); ++g) {
        check(file.groups[g].record, groupPlace(file, g), findings);
        for (std::size_t z = 0; z < file.groups[g].zones.size(); ++z)
            check(file.groups[g].zones[z].record, zonePlace(file, g, z), findings);
    }
}

} // namespace zarno

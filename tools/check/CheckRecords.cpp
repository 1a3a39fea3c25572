// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/check/InstrumentCheck.h"
#include "tools/zarno/RecordFields.h"
#include "tools/zarno/RecordJson.h"

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

struct Bounds {
    std::string_view field;
    double low, high;
};
// Of fields that are neither a key nor a velocity, which checkZones sees to, nor named values.
constexpr Bounds bounds[] = {
    {"streamBufferFramesStored", 1, 4194304},
    {"polyphonyStored", 1, 1024},
    {"pan", -1, 1},
    {"glideTime", 0, 1e9},
    {"lfoRate", 0, 1e9},
    {"reverbSend", 0, 1},
};

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
        if (!field.texts.empty() && (value < 0 || value >= static_cast<double>(field.texts.size())))
            add(field, "there is no such choice");
        for (const Bounds& each : bounds)
            if (field.name == each.field && (value < each.low || value > each.high))
                add(field, "it must be from " + Json(each.low).dump() + " to " + Json(each.high).dump());
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

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/RecordJson.h"

#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace zarno {
namespace {

std::size_t bytesOf(const RecordField& field) {
    return field.type == FieldType::Frame ? 8 : 4;
}

template <typename T>
T load(const RecordField& field, const void* record) {
    T value;
    std::memcpy(&value, static_cast<const char*>(record) + field.offset, sizeof value);
    return value;
}

template <typename T>
void store(const RecordField& field, void* record, T value) {
    std::memcpy(static_cast<char*>(record) + field.offset, &value, sizeof value);
}

std::string hexOf(float value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", std::bit_cast<std::uint32_t>(value));
    return text;
}

// The shortest decimal number that gives the same float again.
Json floatToJson(float value) {
    if (!std::isfinite(value)) return hexOf(value);
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    double number = 0.0;
    std::from_chars(text, end, number);
    const auto back = static_cast<float>(number);
    return std::bit_cast<std::uint32_t>(back) == std::bit_cast<std::uint32_t>(value) ? Json(number)
                                                                                     : Json(hexOf(value));
}

float floatFromJson(const Json& json, const std::string& where) {
    if (json.is_number()) {
        const double value = json.get<double>();
        if (std::abs(value) > std::numeric_limits<float>::max())
            throw MakerError(where, "this number is too large");
        return static_cast<float>(value);
    }
    const std::string text = json.is_string() ? json.get<std::string>() : "";
    std::uint32_t bits = 0;
    const char* end = text.data() + text.size();
    if (!text.starts_with("0x") || std::from_chars(text.data() + 2, end, bits, 16).ptr != end ||
        text.size() != 10)
        throw MakerError(where, "this must be a number, or a float's bits as \"0x\" and 8 digits");
    return std::bit_cast<float>(bits);
}

// `it must be "Low", "Mid" or "High"`
std::string choicesOf(const RecordField& field) {
    std::string text = "it must be ";
    for (std::size_t i = 0; i < field.choices.size(); ++i) {
        const bool isLast = i + 1 == field.choices.size();
        text += (i == 0 ? "\"" : isLast ? " or \"" : ", \"") + std::string(field.choices[i]) + '"';
    }
    return text;
}

double numberOf(const RecordField& field, const void* record) {
    if (field.type == FieldType::Float) return load<float>(field, record);
    if (field.type == FieldType::Int) return load<std::int32_t>(field, record);
    return static_cast<double>(load<std::uint64_t>(field, record));
}

std::int32_t intFromJson(const RecordField& field, const Json& json, const std::string& where) {
    if (json.is_string() && !field.choices.empty()) {
        const auto given = json.get<std::string>();
        const auto found = std::find(field.choices.begin(), field.choices.end(), given);
        if (found != field.choices.end()) return static_cast<std::int32_t>(found - field.choices.begin());
        throw MakerError(where, "there is no \"" + given + "\" here: " + choicesOf(field) +
                                    suggestion(given, field.choices));
    }
    if (json.is_boolean()) return json.get<bool>() ? 1 : 0;
    const double number = json.is_number() ? json.get<double>() : 0.5;
    if (number != std::floor(number) || number < INT32_MIN || number > INT32_MAX)
        throw MakerError(where, "this must be a whole number of 32 bits");
    return static_cast<std::int32_t>(number);
}

std::uint64_t frameFromJson(const Json& json, const std::string& where) {
    if (json.is_number_unsigned()) return json.get<std::uint64_t>();
    throw MakerError(where, "this must be a whole number, 0 or more");
}

void fieldFromJson(const RecordField& field, const Json& json, void* record, const std::string& where) {
    switch (field.type) {
    case FieldType::Int:
        return store(field, record, intFromJson(field, json, where));
    case FieldType::Frame:
        return store(field, record, frameFromJson(json, where));
    case FieldType::Float:
        return store(field, record, floatFromJson(json, where));
    }
}

bool isFieldInRange(const RecordField& field, const void* record) {
    return field.range.holds(numberOf(field, record));
}

bool isDefault(const RecordLayout& layout, const RecordField& field, const void* record) {
    const auto at = [&](const void* base) { return static_cast<const char*>(base) + field.offset; };
    return std::memcmp(at(record), at(layout.defaults), bytesOf(field)) == 0;
}

} // namespace

Json fieldToJson(const RecordField& field, const void* record) {
    if (field.type == FieldType::Float) return floatToJson(load<float>(field, record));
    if (field.type == FieldType::Frame) return load<std::uint64_t>(field, record);
    const auto value = load<std::int32_t>(field, record);
    const bool named = value >= 0 && static_cast<std::size_t>(value) < field.choices.size();
    return named ? Json(field.choices[static_cast<std::size_t>(value)]) : Json(value);
}

Json recordToJson(const RecordLayout& layout, const void* record, std::span<const std::string_view> always) {
    Json json = Json::object();
    for (const RecordField& field : layout.fields) {
        const bool asked = std::find(always.begin(), always.end(), field.name) != always.end();
        if (asked || !isDefault(layout, field, record))
            json[std::string(field.name)] = fieldToJson(field, record);
    }
    const char* unread = static_cast<const char*>(record) + layout.unreadOffset;
    std::size_t count = layout.bytes - layout.unreadOffset;
    while (count > 0 && unread[count - 1] == 0)
        --count;
    if (count > 0) json["unread"] = toHex(unread, count);
    return json;
}

void recordFromJson(const RecordLayout& layout, const Json& json, void* record, const std::string& where,
                    Ranges ranges, JsonFaults& faults) {
    JsonObject object(json, where, faults);
    for (const RecordField& field : layout.fields) {
        const std::string name(field.name);
        const Json* given = object.find(name);
        if (!given) continue;
        faults.guard([&] {
            fieldFromJson(field, *given, record, object.whereOf(name));
            if (ranges == Ranges::Checked && !isFieldInRange(field, record))
                throw MakerError(object.whereOf(name), "this is " + given->dump() + ": " + rangeOf(field));
        });
    }
    const auto unread = object.hex("unread");
    if (unread.size() > layout.bytes - layout.unreadOffset)
        object.fault("unread", "these are more bytes than the record has");
    else
        std::copy(unread.begin(), unread.end(), static_cast<std::uint8_t*>(record) + layout.unreadOffset);
    object.finish();
}

bool isInRange(const RecordLayout& layout, const void* record) {
    return std::all_of(layout.fields.begin(), layout.fields.end(),
                       [&](const RecordField& field) { return isFieldInRange(field, record); });
}

std::string rangeOf(const RecordField& field) {
    const std::string low = shortNumber(field.range.low), high = shortNumber(field.range.high);
    const std::string unit = field.unit.empty() ? "" : ' ' + std::string(field.unit);
    if (std::isinf(field.range.low)) return "it must be a number";
    if (std::isinf(field.range.high)) return "it must be " + low + unit + " or more";
    if (!field.choices.empty()) return choicesOf(field);
    return "it must be from " + low + " to " + high + unit;
}

std::string shortNumber(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

} // namespace zarno

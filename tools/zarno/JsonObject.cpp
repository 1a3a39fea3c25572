// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/JsonObject.h"

#include "data/load/InstrumentFile.h"
#include "platform/Utf8.h"
#include "tools/zarno/MakerError.h"

#include <limits>

namespace zarno {

JsonObject::JsonObject(const Json& value, std::string where, JsonFaults& faults)
    : value_(&value)
    , where_(std::move(where))
    , faults_(faults) {
    static const Json empty = Json::object();
    if (value.is_object()) return;
    if (!value.is_null()) faults.add(where_, "this must be an object");
    value_ = &empty;
}

std::string JsonObject::whereOf(std::string_view key) const {
    return where_.empty() ? std::string(key) : where_ + '.' + std::string(key);
}

const Json* JsonObject::find(const std::string& key) {
    known_.insert(key);
    const auto found = value_->find(key);
    return found == value_->end() ? nullptr : &*found;
}

const Json& JsonObject::at(const std::string& key) {
    static const Json none;
    if (const Json* found = find(key)) return *found;
    fault(key, "this is missing");
    return none;
}

std::string JsonObject::text(const std::string& key, const std::string& otherwise) {
    const Json* found = find(key);
    if (!found) return otherwise;
    if (found->is_string()) return found->get<std::string>();
    fault(key, "this must be a text");
    return otherwise;
}

std::int64_t JsonObject::integer(const std::string& key, std::int64_t otherwise, std::int64_t low,
                                 std::int64_t high) {
    const Json* found = find(key);
    if (!found) return otherwise;
    const bool tooLarge = found->is_number_unsigned() && found->get<std::uint64_t>() > INT64_MAX;
    if (found->is_number_integer() && !tooLarge && found->get<std::int64_t>() >= low &&
        found->get<std::int64_t>() <= high)
        return found->get<std::int64_t>();
    fault(key, "this must be a whole number from " + std::to_string(low) + " to " + std::to_string(high));
    return otherwise;
}

std::int32_t JsonObject::int32(const std::string& key, std::int32_t otherwise) {
    return static_cast<std::int32_t>(integer(key, otherwise, INT32_MIN, INT32_MAX));
}

bool JsonObject::flag(const std::string& key) {
    const Json* found = find(key);
    if (found && !found->is_boolean()) fault(key, "this must be true or false");
    return found && found->is_boolean() && found->get<bool>();
}

StoredText JsonObject::storedText(const std::string& key) {
    const Json* found = find(key);
    return found ? textFromJson(*found, whereOf(key), faults_) : StoredText();
}

std::vector<std::uint8_t> JsonObject::hex(const std::string& key) {
    std::vector<std::uint8_t> bytes;
    if (const Json* found = find(key)) faults_.guard([&] { bytes = fromHex(*found, whereOf(key)); });
    return bytes;
}

const Json& JsonObject::list(const std::string& key) {
    static const Json none = Json::array();
    const Json* found = find(key);
    if (found && !found->is_array()) fault(key, "this must be a list");
    return found && found->is_array() ? *found : none;
}

void JsonObject::finish() {
    const std::vector<std::string_view> names(known_.begin(), known_.end());
    for (const auto& [key, member] : value_->items())
        if (!known_.contains(key)) fault(key, "there is no such field" + suggestion(key, names));
}

Json textToJson(const StoredText& text) {
    if (text.terminated && isValidUtf8(text.bytes)) return text.bytes;
    Json json = {{"hex", toHex(text.bytes.data(), text.bytes.size())}};
    if (!text.terminated) json["terminated"] = false;
    return json;
}

StoredText textFromJson(const Json& json, const std::string& where, JsonFaults& faults) {
    if (json.is_string()) return {json.get<std::string>(), true};
    if (!json.is_object()) {
        if (!json.is_null()) faults.add(where, "this must be a text, or an object with its bytes in \"hex\"");
        return {};
    }
    JsonObject object(json, where, faults);
    object.at("hex");
    const auto bytes = object.hex("hex");
    const bool terminated = !object.has("terminated") || object.flag("terminated");
    object.find("terminated");
    object.finish();
    return {std::string(bytes.begin(), bytes.end()), terminated};
}

std::string toHex(const void* bytes, std::size_t count) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * count);
    for (const auto* byte = static_cast<const std::uint8_t*>(bytes); count > 0; ++byte, --count) {
        text += digits[*byte >> 4];
        text += digits[*byte & 15];
    }
    return text;
}

std::vector<std::uint8_t> fromHex(const Json& json, const std::string& where) {
    const auto digit = [&](char c) {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        throw MakerError(where, "this must be pairs of hexadecimal digits");
    };
    const std::string text = json.is_string() ? json.get<std::string>() : "?";
    if (text.size() % 2 != 0) digit('?');
    std::vector<std::uint8_t> bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(digit(text[2 * i]) << 4 | digit(text[2 * i + 1]));
    return bytes;
}

} // namespace zarno

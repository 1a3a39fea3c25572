// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/zarno/JsonFaults.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zarno {

struct StoredText;

using Json = nlohmann::ordered_json;

/// Reads the members of one JSON object and knows where it stands in its file. A member that is not as asked
/// for is added to the faults and read as if it were not there; finish() adds the members that were not asked
/// for.
class JsonObject {
  public:
    /// `value` and `faults` must outlive this. Anything but an object is a fault, and reads as an empty one.
    JsonObject(const Json& value, std::string where, JsonFaults& faults);

    bool has(const std::string& key) const { return value_->contains(key); }
    /// The member, or null.
    const Json* find(const std::string& key);
    /// The member, which has to be there; else null JSON.
    const Json& at(const std::string& key);
    /// "groups[2].name"
    std::string whereOf(std::string_view key) const;
    void fault(std::string_view key, const std::string& why) { faults_.add(whereOf(key), why); }

    std::string text(const std::string& key, const std::string& otherwise = {});
    std::int64_t integer(const std::string& key, std::int64_t otherwise, std::int64_t low, std::int64_t high);
    std::int32_t int32(const std::string& key, std::int32_t otherwise);
    bool flag(const std::string& key);
    StoredText storedText(const std::string& key);
    std::vector<std::uint8_t> hex(const std::string& key);
    /// The members of a list, empty when there is none.
    const Json& list(const std::string& key);

    void finish();

  private:
    const Json* value_;
    std::string where_;
    JsonFaults& faults_;
    std::set<std::string> known_;
};

/// A text as JSON: a string when it is UTF-8, else an object with its bytes in hex.
Json textToJson(const StoredText& text);
StoredText textFromJson(const Json& json, const std::string& where, JsonFaults& faults);

std::string toHex(const void* bytes, std::size_t count);
/// Throws MakerError.
std::vector<std::uint8_t> fromHex(const Json& json, const std::string& where);

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

namespace zarno::test {

// Little-endian bytes of values, one after the other.
template <typename... Values>
std::string raw(const Values&... values) {
    std::string bytes;
    const auto append = [&](const auto& value) {
        static_assert(std::is_trivially_copyable_v<std::decay_t<decltype(value)>>);
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    };
    (append(values), ...);
    return bytes;
}

template <typename T>
T at(const std::string& bytes, std::size_t offset) {
    T value{};
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

inline std::string zeroTerminated(const std::string& text) {
    return text + '\0';
}

} // namespace zarno::test

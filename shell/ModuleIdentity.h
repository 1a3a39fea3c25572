// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Who a module says it is. One build serves many instrument packs: three fields are branded into the module
// file.
namespace zarno {

struct ModuleIdentity {
    std::uint32_t uniqueId = 0; ///< four characters, the first one in the highest byte
    std::string packTitle;      ///< UTF-8, may be empty
    std::string vendor;         ///< UTF-8, may be empty

    friend bool operator==(const ModuleIdentity&, const ModuleIdentity&) = default;
};

/// On Windows the fields lie in the stub text of the module's header, which nothing else reads.
namespace identityField {
inline constexpr std::size_t uniqueId = 78; // 4 bytes
inline constexpr std::size_t packTitle = 82;
inline constexpr std::size_t vendor = 99;
inline constexpr std::size_t textBytes = 16;
inline constexpr std::size_t end = vendor + textBytes;
} // namespace identityField

/// The identity of a module that has not been branded.
const ModuleIdentity& builtInIdentity();

/// True for a file with the stub ("MZ"); in other files the same offsets are live header fields.
bool hasIdentityFields(std::span<const std::uint8_t> moduleStart);

/// Reads the fields wherever they are; a field that does not fit into what is given is empty.
ModuleIdentity readIdentityFields(std::span<const std::uint8_t> moduleStart);

/// Writes the fields into the first bytes of a module with a stub. Texts are cut to 16 bytes, between
/// characters. False, and nothing written, when there is no stub or too little of it.
bool writeIdentityFields(std::span<std::uint8_t> moduleStart, const ModuleIdentity& identity);

/// The text file beside a module without a stub, named like the module plus ".identity": lines "id=",
/// "title=", "vendor=" in any order; lines that are missing or not understood leave the built-in value.
ModuleIdentity parseSidecar(std::string_view text);
std::string formatSidecar(const ModuleIdentity& identity);
inline constexpr const char* sidecarSuffix = ".identity";

/// "Zspl" as a number. None unless it has four characters from blank to tilde.
std::optional<std::uint32_t> uniqueIdFromText(std::string_view text);
std::string uniqueIdAsText(std::uint32_t uniqueId);

/// The identity of the module that contains this code: fields, else sidecar, else built in.
ModuleIdentity readOwnIdentity();

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ModuleIdentity.h"

#include "platform/Utf8.h"

#include <algorithm>
#include <array>

namespace zarno {
namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// At most `limit` bytes, never half a character of UTF-8.
std::string_view cutText(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return text;
    while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0) == 0x80)
        --limit;
    return text.substr(0, limit);
}

std::string readText(std::span<const std::uint8_t> start, std::size_t offset) {
    if (start.size() < offset + identityField::textBytes) return {};
    const std::string_view field(reinterpret_cast<const char*>(start.data()) + offset,
                                 identityField::textBytes);
    return toUtf8(trimmed(field.substr(0, field.find('\0'))));
}

void writeText(std::span<std::uint8_t> start, std::size_t offset, std::string_view text) {
    const auto field = start.subspan(offset, identityField::textBytes);
    const auto cut = cutText(text, field.size());
    std::fill(field.begin(), field.end(), std::uint8_t{0});
    std::copy(cut.begin(), cut.end(), field.begin());
}

void takeSidecarLine(std::string_view line, ModuleIdentity& identity) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) return;
    const auto key = trimmed(line.substr(0, equals));
    const auto value = trimmed(line.substr(equals + 1));
    if (key == "id") identity.uniqueId = uniqueIdFromText(value).value_or(identity.uniqueId);
    if (key == "title") identity.packTitle = toUtf8(cutText(value, identityField::textBytes));
    if (key == "vendor") identity.vendor = toUtf8(cutText(value, identityField::textBytes));
}

} // namespace

const ModuleIdentity& builtInIdentity() {
    // No title: a host is then told the product's own name, which would not fit into the field.
    static const ModuleIdentity identity{*uniqueIdFromText("Zspl"), {}, "Zarno"};
    return identity;
}

bool hasIdentityFields(std::span<const std::uint8_t> moduleStart) {
    return moduleStart.size() >= 2 && moduleStart[0] == 'M' && moduleStart[1] == 'Z';
}

ModuleIdentity readIdentityFields(std::span<const std::uint8_t> moduleStart) {
    ModuleIdentity identity;
    if (moduleStart.size() >= identityField::uniqueId + 4)
        for (std::size_t i = 0; i < 4; ++i)
            identity.uniqueId = identity.uniqueId << 8 | moduleStart[identityField::uniqueId + i];
    identity.packTitle = readText(moduleStart, identityField::packTitle);
    identity.vendor = readText(moduleStart, identityField::vendor);
    return identity;
}

bool writeIdentityFields(std::span<std::uint8_t> moduleStart, const ModuleIdentity& identity) {
    if (!hasIdentityFields(moduleStart) || moduleStart.size() < identityField::end) return false;
    for (std::size_t i = 0; i < 4; ++i)
        moduleStart[identityField::uniqueId + i] =
            static_cast<std::uint8_t>(identity.uniqueId >> (24 - 8 * i));
    writeText(moduleStart, identityField::packTitle, identity.packTitle);
    writeText(moduleStart, identityField::vendor, identity.vendor);
    return true;
}

ModuleIdentity parseSidecar(std::string_view text) {
    ModuleIdentity identity = builtInIdentity();
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        takeSidecarLine(text.substr(0, end), identity);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return identity;
}

std::string formatSidecar(const ModuleIdentity& identity) {
    return "id=" + uniqueIdAsText(identity.uniqueId) + "\ntitle=" + identity.packTitle +
           "\nvendor=" + identity.vendor + "\n";
}

std::optional<std::uint32_t> uniqueIdFromText(std::string_view text) {
    if (text.size() != 4 || std::any_of(text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }))
        return std::nullopt;
    std::uint32_t id = 0;
    for (const char c : text)
        id = id << 8 | static_cast<std::uint8_t>(c);
    return id;
}

std::string uniqueIdAsText(std::uint32_t uniqueId) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text.push_back(static_cast<char>(uniqueId >> shift));
    return text;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ModuleIdentity.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace zarno {
namespace {

std::array<std::uint8_t, 200> moduleStart(const char* id, const char* title, const char* vendor) {
    std::array<std::uint8_t, 200> bytes{};
    bytes[0] = 'M';
    bytes[1] = 'Z';
    std::memcpy(bytes.data() + 78, id, 4);
    std::memcpy(bytes.data() + 82, title, std::min<std::size_t>(std::strlen(title), 16));
    std::memcpy(bytes.data() + 99, vendor, std::min<std::size_t>(std::strlen(vendor), 16));
    return bytes;
}

TEST(ModuleIdentity, FieldsAtTheirOffsets) {
    const auto identity = readIdentityFields(moduleStart("Abcd", "  Tines \t", "A house"));
    EXPECT_EQ(identity.uniqueId, 0x41626364u);
    EXPECT_EQ(identity.packTitle, "Tines");
    EXPECT_EQ(identity.vendor, "A house");
    EXPECT_EQ(readIdentityFields(moduleStart("Abcd", "Exactly sixteen!", "")).packTitle, "Exactly sixteen!");
}

TEST(ModuleIdentity, AFileTooShortForAFieldLeavesItEmpty) {
    const auto bytes = moduleStart("Abcd", "Tines", "A house");
    const std::span<const std::uint8_t> all(bytes);
    EXPECT_EQ(readIdentityFields(all.first(114)).vendor, "");
    EXPECT_EQ(readIdentityFields(all.first(115)).vendor, "A house");
    EXPECT_EQ(readIdentityFields(all.first(97)).packTitle, "");
    EXPECT_EQ(readIdentityFields(all.first(98)).packTitle, "Tines");
    EXPECT_EQ(readIdentityFields(all.first(81)).uniqueId, 0u);
    EXPECT_EQ(readIdentityFields({}), ModuleIdentity{});
}

TEST(ModuleIdentity, WrittenFieldsReadBackAndTouchNothingElse) {
    auto bytes = moduleStart("This", " program cannot ", "run in DOS mode.");
    const auto before = bytes;
    const ModuleIdentity identity{*uniqueIdFromText("Pck1"), "Cut in a char \xC3\xBC!", "V"};
    ASSERT_TRUE(writeIdentityFields(bytes, identity));
    EXPECT_EQ(readIdentityFields(bytes).uniqueId, identity.uniqueId);
    EXPECT_EQ(readIdentityFields(bytes).packTitle, "Cut in a char \xC3\xBC");
    EXPECT_EQ(readIdentityFields(bytes).vendor, "V");
    for (std::size_t i = 0; i < bytes.size(); ++i)
        EXPECT_TRUE(bytes[i] == before[i] || (i >= 78 && i != 98 && i < 115)) << i;

    bytes[0] = 0x7F; // another kind of file: live header fields there
    EXPECT_FALSE(writeIdentityFields(bytes, identity));
    EXPECT_FALSE(writeIdentityFields(std::span(bytes).first(114), identity));
}

TEST(ModuleIdentity, SidecarLinesInAnyOrder) {
    const ModuleIdentity identity{*uniqueIdFromText("Pck1"), "Tines", "A house"};
    EXPECT_EQ(parseSidecar(formatSidecar(identity)), identity);
    EXPECT_EQ(parseSidecar("vendor = A house\r\nrubbish\n title=Tines\r\nid=Pck1"), identity);
    EXPECT_EQ(parseSidecar(""), builtInIdentity());
    EXPECT_EQ(parseSidecar("id=Five5\nid=\xFF\xFF\xFF\xFF").uniqueId, builtInIdentity().uniqueId);
    EXPECT_EQ(parseSidecar("title=" + std::string(1000, 'x')).packTitle, std::string(16, 'x'));
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ZGroup.h"
#include "shell/HostChunk.h"

#include <gtest/gtest.h>

namespace zarno {
namespace {

std::vector<std::unique_ptr<ZGroup>> threeGroups() {
    std::vector<std::unique_ptr<ZGroup>> groups;
    for (int i = 0; i < 3; ++i) {
        groups.push_back(std::make_unique<ZGroup>("group"));
        groups.back()->record.volume = static_cast<float>(-i);
    }
    return groups;
}

TEST(DamagedProjects, WhatIsWrittenReadsBack) {
    InstrumentSettings settings;
    settings.volume = -7.5f;
    settings.velocityFloor = -99;
    const auto chunk = encodeChunk("/a/b.zse", settings, 1, threeGroups());
    EXPECT_EQ(chunk.size(), 9u + 600u + 3u * 580u);
    const auto parts = splitChunk(chunk);
    EXPECT_EQ(parts.path, "/a/b.zse");
    const auto state = decodeTail(parts.tail, 3);
    ASSERT_EQ(state.groups.size(), 3u);
    EXPECT_EQ(state.groups[2].volume, -2.0f);
    EXPECT_EQ(state.currentGroup, 1);
    InstrumentSettings live;
    takeRestoredFields(live, *state.settings);
    EXPECT_EQ(live.volume, -7.5f);
    EXPECT_EQ(live.velocityFloor, -48) << "behind the restored fields";
    EXPECT_TRUE(decodeTail(parts.tail, 2).groups.empty());
    EXPECT_FALSE(decodeTail(parts.tail, 2).currentGroup);
}

TEST(DamagedProjects, LongPathsAreCutBetweenCharacters) {
    const std::string path = std::string(1022, 'x') + "\xC3\xBC" + "rest";
    EXPECT_EQ(encodeChunkPath(path).size(), 1023u);
    EXPECT_EQ(encodeChunkPath(std::string(1023, 'x')).size(), 1024u);
    EXPECT_EQ(encodeChunkPath(std::string(5000, 'x')).size(), 1024u);
    EXPECT_EQ(encodeChunkPath(""), std::vector<std::uint8_t>{0});
}

TEST(DamagedProjects, ShortTails) {
    const auto chunk = encodeChunk("", {}, 2, threeGroups());
    const std::span<const std::uint8_t> tail(chunk.data() + 1, chunk.size() - 1);
    EXPECT_FALSE(decodeTail(tail.first(79), 3).settings);
    EXPECT_TRUE(decodeTail(tail.first(80), 3).settings);
    EXPECT_FALSE(decodeTail(tail.first(tail.size() - 1), 3).currentGroup);
    EXPECT_TRUE(decodeTail(tail.first(tail.size() - 1), 3).groups.empty());
    EXPECT_EQ(decodeTail(tail, 3).currentGroup, 2);
}

} // namespace
} // namespace zarno

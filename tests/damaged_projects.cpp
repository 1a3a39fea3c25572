// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ZGroup.h"
#include "shell/HostChunk.h"
#include "tests/support/Chance.h"

#include <gtest/gtest.h>

#include <cstring>

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

TEST(DamagedProjects, AHundredThousandMutations) {
    const auto whole = encodeChunk("/library/piano.zse", {}, 1, threeGroups());
    Chance chance(11);
    int withGroups = 0;
    for (int i = 0; i < 100000; ++i) {
        auto chunk = whole;
        for (int edits = chance.between(1, 4); edits > 0; --edits)
            chunk[static_cast<std::size_t>(chance.below(static_cast<int>(chunk.size())))] =
                static_cast<std::uint8_t>(chance.of({0, 1, 127, 128, 255, chance.below(256)}));
        const std::int32_t count = chance.of({-1, 0, 2, 4, INT32_MAX, INT32_MIN, 3});
        if (chance.oneIn(3)) std::memcpy(chunk.data() + 19 + 592, &count, 4);
        chunk.resize(static_cast<std::size_t>(chance.below(static_cast<int>(chunk.size()) + 1)));
        const auto parts = splitChunk(chunk);
        for (const std::size_t groups : {0u, 3u, 5u}) {
            const auto state = decodeTail(parts.tail, groups);
            ASSERT_TRUE(state.groups.empty() || state.groups.size() == groups);
            if (state.currentGroup) {
                ASSERT_GE(*state.currentGroup, -1);
                ASSERT_LT(*state.currentGroup, static_cast<std::int32_t>(std::max<std::size_t>(groups, 1)));
            }
            withGroups += state.groups.empty() ? 0 : 1;
        }
    }
    EXPECT_GT(withGroups, 10) << "some must have come through";
}

} // namespace
} // namespace zarno

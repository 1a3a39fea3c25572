// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace zarno {
namespace {

using testing::ElementsAre;

// One group whose zone n plays the level (n + 1) / 16, so that what is heard names the zones.
class Robin {
  public:
    Robin(int mode, int zones) {
        GroupRecord record;
        record.selectionMode = mode;
        group_ = &t_.addGroup(record);
        for (int n = 0; n < zones; ++n) {
            const TestSample sample = TestSample::level(static_cast<float>(n + 1) / 16, 100);
            ZoneRecord zone = plainZone(sample);
            zone.fixedPitch = 1;
            t_.addZone(*group_, sample, zone);
        }
        t_.engine.seedRandom(1);
    }

    ZoneRecord& zone(std::size_t n) { return group_->zones()[n]->record; }

    // The sum of the numbers of the zones that sound, counted from 1; 0 for none.
    int play(int velocity = 100, int key = 60) {
        t_.noteOn(key, velocity);
        const float level = t_.next();
        t_.noteOff(key);
        t_.next();
        return static_cast<int>(std::lround(level * 16));
    }

    std::vector<int> play(std::size_t times) {
        std::vector<int> heard;
        while (heard.size() < times)
            heard.push_back(play());
        return heard;
    }

  private:
    TestInstrument t_;
    ZGroup* group_;
};

TEST(RoundRobin, StackPlaysEveryZoneThatMatches) {
    Robin robin(0, 4);
    robin.zone(1).lowVelocity = 101;
    EXPECT_THAT(robin.play(std::size_t{2}), ElementsAre(1 + 3 + 4, 1 + 3 + 4));
    EXPECT_EQ(robin.play(101), 1 + 2 + 3 + 4);
}

TEST(RoundRobin, ZonesTakeTurnsFromTheFirstOn) {
    EXPECT_THAT(Robin(1, 3).play(std::size_t{5}), ElementsAre(1, 2, 3, 1, 2));
    EXPECT_THAT(Robin(9, 3).play(std::size_t{4}), ElementsAre(1, 2, 3, 1)); // a mode that does not exist
}

TEST(RoundRobin, AZoneThatDoesNotMatchLosesNobodyATurn) {
    Robin robin(1, 4);
    robin.zone(1).highVelocity = 50;
    robin.zone(2).lowVelocity = 120;
    EXPECT_THAT(robin.play(std::size_t{3}), ElementsAre(1, 4, 1));
    EXPECT_EQ(robin.play(20), 2);
    EXPECT_EQ(robin.play(), 4);
    robin.zone(0).highVelocity = robin.zone(3).highVelocity = 10;
    EXPECT_EQ(robin.play(), 0);
    EXPECT_EQ(robin.play(5), 1);
}

TEST(RoundRobin, RandomRobinRepeatsAZoneOnlyWhenItIsAlone) {
    Robin robin(2, 3);
    const std::vector<int> heard = robin.play(std::size_t{200});
    for (std::size_t i = 1; i < heard.size(); ++i)
        ASSERT_NE(heard[i], heard[i - 1]) << i;
    EXPECT_EQ(std::set<int>(heard.begin(), heard.end()).size(), 3u);
    int turns = 0; // to the next zone and to the one before: a round has one of the two only
    for (std::size_t i = 1; i < heard.size(); ++i)
        turns += (heard[i] - heard[i - 1] + 3) % 3 == 1;
    EXPECT_GT(turns, 50);
    EXPECT_LT(turns, 150);

    robin.zone(0).highVelocity = robin.zone(2).highVelocity = 50;
    EXPECT_THAT(robin.play(std::size_t{3}), ElementsAre(2, 2, 2));
}

TEST(RoundRobin, TotalRandomMayRepeatAndLeavesNobodyOut) {
    Robin robin(3, 3);
    const std::vector<int> heard = robin.play(std::size_t{200});
    int repeats = 0;
    for (std::size_t i = 1; i < heard.size(); ++i)
        repeats += heard[i] == heard[i - 1];
    EXPECT_GT(repeats, 30);
    EXPECT_LT(repeats, 110);
    EXPECT_EQ(std::set<int>(heard.begin(), heard.end()).size(), 3u);
}

TEST(RoundRobin, RangesIncludeTheirEnds) {
    Robin robin(0, 1);
    robin.zone(0).lowVelocity = 40;
    robin.zone(0).highVelocity = 90;
    EXPECT_EQ(robin.play(39), 0);
    EXPECT_EQ(robin.play(40), 1);
    EXPECT_EQ(robin.play(90), 1);
    EXPECT_EQ(robin.play(91), 0);

    TestInstrument t;
    GroupRecord group;
    group.lowKey = 50;
    group.highKey = 60;
    group.lowVelocity = 10;
    group.highVelocity = 20;
    t.addLevel(0.5f, group);
    for (const auto& [key, velocity] : {std::pair{50, 10}, {60, 20}, {49, 15}, {61, 15}, {55, 9}, {55, 21}}) {
        t.noteOn(key, velocity);
        const bool inside = key >= 50 && key <= 60 && velocity >= 10 && velocity <= 20;
        EXPECT_EQ(t.next() > 0, inside) << key << ", " << velocity;
        t.noteOff(key);
        t.next();
    }
}

} // namespace
} // namespace zarno

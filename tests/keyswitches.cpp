// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TestInstrument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarno {
namespace {

using testing::ElementsAre;

// Group triggers, in the order of the record's values.
enum { always, channel, note, controller, program, manual };

GroupRecord trigger(int kind) {
    GroupRecord record;
    record.trigger = kind;
    return record;
}

GroupRecord keyswitch(int key) {
    GroupRecord record = trigger(note);
    record.keyswitchNote = key;
    return record;
}

GroupRecord onController(int number, int low, int high) {
    GroupRecord record = trigger(controller);
    record.controllerNumber = number;
    record.controllerLow = low;
    record.controllerHigh = high;
    return record;
}

// Groups 0, 1, 2 ... of one zone each.
class Switches {
  public:
    explicit Switches(std::initializer_list<GroupRecord> groups) {
        for (const GroupRecord& group : groups)
            t.addLevel(0.1f, group);
    }

    std::vector<int> active() {
        t.render(1);
        std::vector<int> indices;
        for (const ZGroup* group : t.engine.activeGroups())
            for (std::size_t i = 0; i < t.engine.groups().size(); ++i)
                if (t.engine.groups()[i].get() == group) indices.push_back(static_cast<int>(i));
        return indices;
    }

    TestInstrument t;
};

TEST(Keyswitches, AKeyswitchSoundsItsOwnGroupAtOnce) {
    Switches s{keyswitch(24), keyswitch(25)};
    s.t.noteOn(60);
    EXPECT_EQ(s.t.next(), 0.0f); // none chosen yet
    EXPECT_EQ(s.t.engine.currentGroupIndex(), -1);
    s.t.noteOn(24);
    EXPECT_EQ(s.t.next(), 0.1f); // the keyswitch's own note
    s.t.noteOn(25, 0);           // any velocity
    EXPECT_THAT(s.active(), ElementsAre(1));
    EXPECT_EQ(s.t.engine.currentGroupIndex(), 1);
    s.t.noteOff(24);
    s.t.noteOn(99);
    EXPECT_THAT(s.active(), ElementsAre(1));
}

TEST(Keyswitches, GroupsBeforeTheSwitchWaitForTheNextEventThoseBehindDoNot) {
    Switches s{trigger(always), keyswitch(24), trigger(always), trigger(manual)};
    s.t.engine.activateGroup(s.t.engine.groups()[3].get());
    s.t.noteOn(24);
    EXPECT_THAT(s.active(), ElementsAre(1, 2));
    s.t.noteOff(24);
    EXPECT_THAT(s.active(), ElementsAre(1, 2, 0)); // in the order in which they became active
}

TEST(Keyswitches, ControllersAndProgramsCountFromTheNextEventOn) {
    GroupRecord second = trigger(program);
    second.program = 1;
    Switches s{trigger(program), second, onController(2, 64, 127)};
    s.t.noteOn(60);
    EXPECT_THAT(s.active(), ElementsAre(0));
    s.t.engine.postEvent(midi::programChange, 0, 1, 0, 0);
    s.t.controller(2, 64);
    EXPECT_THAT(s.active(), ElementsAre(1));
    s.t.noteOff(60);
    EXPECT_THAT(s.active(), ElementsAre(1, 2));
    s.t.controller(2, 63);
    s.t.noteOff(60);
    EXPECT_THAT(s.active(), ElementsAre(1));
}

TEST(Keyswitches, ReleasingAllNotesLeavesTheActiveGroups) {
    GroupRecord onChannel3 = trigger(channel);
    onChannel3.channel = 3;
    Switches s{onChannel3, trigger(channel)};
    s.t.noteOn(60, 100, 0, 3);
    s.t.controller(64, 127, 0, 3);
    s.t.noteOff(60, 0, 3);
    EXPECT_GT(s.t.next(), 0.0f) << "held by the pedal";
    s.t.engine.requestRelease();
    EXPECT_THAT(s.active(), ElementsAre(0));
    EXPECT_EQ(s.t.framesUntilSilence(), 0);
    EXPECT_EQ(s.t.engine.controllerValue(64), 0);
    s.t.noteOn(60, 100, 0, 3);
    s.t.noteOff(60, 0, 3);
    EXPECT_EQ(s.t.next(), 0.0f) << "the pedal is up";
}

TEST(Keyswitches, ARequestedGroupIsTheCurrentOneBeforeTheNextBlock) {
    Switches s{trigger(manual), trigger(manual), trigger(manual)};
    s.t.engine.activateGroup(s.t.engine.groups()[0].get());
    s.t.engine.requestActiveGroups({2, 1});
    EXPECT_EQ(s.t.engine.currentGroupIndex(), 1);
    EXPECT_THAT(s.active(), ElementsAre(1, 2));
    EXPECT_EQ(s.t.engine.currentGroupIndex(), 1);
    s.t.engine.requestActiveGroups({});
    EXPECT_EQ(s.t.engine.currentGroupIndex(), -1);
    EXPECT_THAT(s.active(), ElementsAre());
}

TEST(Keyswitches, EveryEventsChannelDecides) {
    GroupRecord first = trigger(channel), second = trigger(channel);
    second.channel = 3;
    Switches s{first, second};
    s.t.noteOn(60, 100, 0, 3);
    EXPECT_THAT(s.active(), ElementsAre(1));
    s.t.engine.postEvent(0xD0, 0, 5, 0, 0); // channel pressure
    EXPECT_THAT(s.active(), ElementsAre(0));
    s.t.noteOff(60, 0, 7);
    EXPECT_THAT(s.active(), ElementsAre());
}

TEST(Keyswitches, ExcludedGroupsNeverStayAndManualOnesAreLeftAlone) {
    GroupRecord excluded = trigger(always), unknown = trigger(77);
    excluded.excluded = 1;
    Switches s{excluded, trigger(manual), unknown, onController(-5, 0, 127)};
    for (const std::size_t i : {0u, 1u, 2u})
        s.t.engine.activateGroup(s.t.engine.groups()[i].get());
    EXPECT_THAT(s.active(), ElementsAre(0, 1, 2));
    s.t.noteOff(1);
    EXPECT_THAT(s.active(), ElementsAre(1, 2));
    s.t.engine.deactivateAllGroups();
    s.t.noteOff(1);
    EXPECT_THAT(s.active(), ElementsAre());
}

} // namespace
} // namespace zarno

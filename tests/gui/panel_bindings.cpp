// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineEvent.h"
#include "engine/ZInstrument.h"
#include "gui/GroupSelection.h"
#include "gui/KeyRoles.h"
#include "gui/PanelEdits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace zarno {
namespace {

using testing::ElementsAre;

// Which four-byte fields of a record differ from its defaults, by offset.
template <typename Record>
std::vector<std::size_t> changedFields(const Record& record, const Record& before = {}) {
    std::vector<std::size_t> offsets;
    const auto* now = reinterpret_cast<const char*>(&record);
    const auto* then = reinterpret_cast<const char*>(&before);
    for (std::size_t i = 0; i < sizeof(Record); i += 4)
        if (std::memcmp(now + i, then + i, 4) != 0) offsets.push_back(i);
    return offsets;
}

struct Applied final : ZSEDelegate {
    int count = 0;
    bool loadProgress(float, const char*, const char*) override { return true; }
    void groupsChanged() override {}
    void reportMessage(const char*, char*) override {}
    void settingsChanged() override { ++count; }
    void requestLicenceText(char*) override {}
};

class PanelBindings : public testing::Test {
  protected:
    PanelBindings() {
        engine.setDelegate(&applied);
        for (const char* name : {"one", "two", "three"})
            engine.createGroup(name);
    }
    GroupRecord& group(int index) { return engine.groups()[static_cast<std::size_t>(index)]->record; }
    void renderOneBlock() {
        float left[16], right[16];
        float* outputs[] = {left, right};
        engine.renderBlock(outputs, 2, 16);
    }
    PanelEdits edits() { return PanelEdits(engine, selection); }

    Applied applied;
    ZInstrument engine;
    std::vector<int> selection{0, 2};
};

TEST_F(PanelBindings, KeysHaveTheRolesThatTheGroupsGiveThem) {
    const auto rolesAt = [&] {
        std::string text;
        for (const int key : {9, 10, 19, 20, 30, 50, 24})
            text += "-pka"[static_cast<int>(keyRolesOf(engine)[static_cast<std::size_t>(key)])];
        return text;
    };
    EXPECT_EQ(rolesAt(), "ppppppp") << "nothing is known of the keys without zones";
    for (int i = 0; i < 3; ++i) { // keys 10 to 19, 30 to 39, 50 to 59
        auto zone = std::make_unique<ZZone>();
        zone->record.lowKey = 10 + 20 * i, zone->record.highKey = 29 + 20 * i;
        group(i).highKey = 19 + 20 * i;
        engine.groups()[static_cast<std::size_t>(i)]->addZone(std::move(zone));
    }
    EXPECT_EQ(rolesAt(), "-pp-pp-");
    group(1).releaseTrigger = 1, group(2).excluded = 1;
    group(0).trigger = static_cast<int>(GroupTrigger::Note), group(0).keyswitchNote = 24;
    EXPECT_EQ(rolesAt(), "-pp---k") << "no key plays a release sample";
    engine.activateGroup(engine.groups()[0].get());
    EXPECT_EQ(rolesAt(), "-pp---a");
}

TEST_F(PanelBindings, EachInstrumentKnobWritesItsFieldAndNothingElse) {
    struct Row {
        int id;
        std::size_t offset;
        double low, middle, high; // at positions 0, 0.5, 1
        bool applies;
    };
    const Row rows[] = {{1, 44, 0, 500, 1000, false}, {2, 48, -30, -12, 6, true},
                        {3, 52, -1, 0, 1, true},      {4, 68, 0.02, 10.02, 20.02, true},
                        {5, 72, 0, 0.5, 1, false},    {6, 76, 0, 0.5, 1, false},
                        {7, 80, -60, -30, 0, false},  {8, 84, -30, -15, 0, false}};
    for (const Row& row : rows) {
        for (const auto& [position, expected] :
             {std::pair{0.0, row.low}, std::pair{0.5, row.middle}, std::pair{1.0, row.high}}) {
            engine.settings() = InstrumentSettings{};
            applied.count = 0;
            edits().knobMoved(row.id, position);
            EXPECT_NEAR(knobValueIn(*findKnob(row.id), engine.settings()), expected, 1e-6) << row.id;
            for (const std::size_t offset : changedFields(engine.settings()))
                EXPECT_EQ(offset, row.offset) << row.id;
            EXPECT_EQ(applied.count, 0) << "nothing is applied on this thread";
            renderOneBlock();
            EXPECT_EQ(applied.count, row.applies ? 1 : 0) << row.id;
        }
    }
    EXPECT_TRUE(changedFields(group(0)).empty());
}

TEST_F(PanelBindings, EachGroupKnobWritesItsFieldInTheChosenGroupsOnly) {
    struct Row {
        int id;
        std::size_t offset;
        double atZero, atThreeQuarters;
    };
    for (const Row& row : {Row{100, 72, -30, -3}, Row{101, 32, -1000, 500}, Row{102, 36, -1000, 500},
                           Row{103, 40, -30, -7.5}, Row{104, 44, -1000, 500}, Row{105, 68, 0, 750}}) {
        for (int i = 0; i < 3; ++i)
            group(i) = GroupRecord{};
        const auto generation = engine.groups()[2]->generation();
        edits().knobMoved(row.id, 0.0);
        EXPECT_FLOAT_EQ(static_cast<float>(knobValueIn(*findKnob(row.id), group(0))),
                        static_cast<float>(row.atZero));
        edits().knobMoved(row.id, 0.75);
        for (const int chosen : selection) {
            EXPECT_FLOAT_EQ(static_cast<float>(knobValueIn(*findKnob(row.id), group(chosen))),
                            static_cast<float>(row.atThreeQuarters));
            EXPECT_THAT(changedFields(group(chosen)), ElementsAre(row.offset)) << row.id;
        }
        EXPECT_NE(engine.groups()[2]->generation(), generation) << "zones are prepared again";
        EXPECT_TRUE(changedFields(group(1)).empty());
        selection.clear();
        edits().knobMoved(row.id, 0.25);
        EXPECT_FALSE(edits().knobValue(row.id).has_value());
        selection = {0, 2};
    }
    EXPECT_TRUE(changedFields(engine.settings()).empty());
}

TEST_F(PanelBindings, KnobsShowTheEnginesValueAndShowingIsNoChange) {
    for (int id = 0; id < 120; ++id) {
        const KnobBinding* knob = findKnob(id);
        if (knob == nullptr) continue;
        for (double position = 0.0; position <= 1.0; position += 1.0 / 64) {
            edits().knobMoved(id, position);
            const double value = *edits().knobValue(id);
            EXPECT_EQ(knobPositionFor(id, value, position), position) << id << " stays where the user put it";
            const double shown = knobPositionFor(id, value, 1.0 - position);
            EXPECT_NEAR(knob->value(shown), value, std::abs(value) * 1e-5 + 1e-5) << id << " at " << position;
        }
    }
    EXPECT_EQ(knobPositionFor(2, 100.0, 0.3), 1.0);
    EXPECT_EQ(knobPositionFor(2, std::nan(""), 0.3), 0.3);
    for (int value = 0; value < 128; ++value)
        EXPECT_EQ(controllerValueAt(knobPositionFor(250, value, 0.3)), value);
}

TEST_F(PanelBindings, CombosOfferTheirListsAndStoreTheIndex) {
    struct Row {
        int id;
        std::size_t offset;
        std::vector<std::string> items;
        bool applies, ofGroup;
    };
    const Row rows[] = {
        {1, 32, {"Low", "Mid", "High"}, false, false},
        {2, 36, {"Normal", "Weak", "Strong"}, false, false},
        {3, 40, {"Poly", "Mono", "Legato"}, false, false},
        {4, 56, {"Triangle", "Sin", "Saw", "Square", "Exponent"}, true, false},
        {5, 60, {"None", "Pitch", "Expression", "Pan"}, false, false},
        {6, 64, {"None", "Mod Wheel", "After Touch", "Velocity"}, false, false},
        {100, 0, {"Always", "Channel", "Note", "Controller", "Program", "Manual"}, false, true},
        {101, 28, {"Stack", "Round Robin", "Random Robin", "Total Random"}, false, true}};
    for (const Row& row : rows) {
        const ComboBinding* combo = findCombo(row.id);
        ASSERT_NE(combo, nullptr);
        EXPECT_EQ(std::vector<std::string>(combo->items.begin(), combo->items.end()), row.items);
        for (int item = -1; item < static_cast<int>(row.items.size()); ++item) {
            engine.settings() = InstrumentSettings{};
            group(0) = GroupRecord{};
            applied.count = 0;
            edits().comboChosen(row.id, item);
            EXPECT_EQ(edits().comboItem(row.id), item);
            const auto changed = row.ofGroup ? changedFields(group(0)) : changedFields(engine.settings());
            for (const std::size_t offset : changed)
                EXPECT_EQ(offset, row.offset) << row.id;
            renderOneBlock();
            EXPECT_EQ(applied.count, row.applies ? 1 : 0) << row.id;
        }
    }
    EXPECT_EQ(findCombo(7), nullptr);
    EXPECT_TRUE(changedFields(group(1)).empty());
}

TEST_F(PanelBindings, ButtonsSetModesAndFlags) {
    const auto click = [this](int id, bool toggled) { edits().buttonClicked(*findButton(id), toggled); };
    for (const auto& [id, mode] : {std::pair{2, 1}, std::pair{3, 2}, std::pair{1, 0}}) {
        click(id, false);
        EXPECT_EQ(engine.settings().playMode, mode);
        EXPECT_EQ(edits().buttonState(id), true);
        EXPECT_EQ(edits().buttonState(id % 3 + 1), false);
    }
    click(100, true);
    EXPECT_THAT(changedFields(group(0)), ElementsAre(76u));
    EXPECT_EQ(edits().buttonState(100), true);
    click(100, false);
    click(101, true);
    EXPECT_THAT(changedFields(group(2)), ElementsAre(64u));
    EXPECT_TRUE(changedFields(group(1)).empty());

    engine.settings().volume = -20.0f;
    engine.settings().glideTime = 5.0f;
    click(6, false);
    EXPECT_THAT(changedFields(engine.settings()), ElementsAre(44u)) << "glide is no part of a reset";
    renderOneBlock();
    EXPECT_EQ(applied.count, 1);
    EXPECT_EQ(findButton(10), nullptr);
}

TEST_F(PanelBindings, KnobsFrom200OnSendControllersAtOnce) {
    edits().knobMoved(207, 0.5); // controller 7 lands in the settings
    renderOneBlock();
    EXPECT_FLOAT_EQ(engine.settings().volume, (127.0f - 63.0f) / 127.0f * -60.0f);
    EXPECT_EQ(controllerNumber(250), 50);
    EXPECT_EQ(controllerNumber(200 + 256), 0);
    EXPECT_EQ(edits().knobValue(207), 63);
}

TEST_F(PanelBindings, TheBendKnobBendsAndShowsTheHostsBend) {
    edits().knobMoved(pitchBendKnobId, 0.0);
    EXPECT_EQ(edits().knobValue(pitchBendKnobId), -1.0);
    engine.postEvent(midi::pitchBend, 0, 0, 96, 0);
    renderOneBlock();
    EXPECT_NEAR(knobPositionFor(pitchBendKnobId, *edits().knobValue(pitchBendKnobId), 0.0), 0.75, 1e-6);
}

TEST_F(PanelBindings, GroupsPickedInTheWindowAreActiveFromTheNextBlockOn) {
    for (int i = 0; i < 3; ++i)
        group(i).trigger = static_cast<std::int32_t>(GroupTrigger::Manual);
    engine.activateGroup(engine.groups()[1].get());
    engine.requestActiveGroups({0, 2});
    EXPECT_THAT(engine.activeGroups(), ElementsAre(engine.groups()[1].get()));
    renderOneBlock();
    EXPECT_THAT(engine.activeGroups(), ElementsAre(engine.groups()[0].get(), engine.groups()[2].get()));
    EXPECT_EQ(engine.currentGroupIndex(), 0);
    engine.requestActiveGroups({});
    renderOneBlock();
    EXPECT_EQ(engine.currentGroupIndex(), -1);
    engine.requestActiveGroups({1});
    engine.clear();
    engine.createGroup("of the next load");
    renderOneBlock();
    EXPECT_TRUE(engine.activeGroups().empty());
}

TEST_F(PanelBindings, TheSelectionBelongsToOneLoad) {
    for (const auto& group : engine.groups())
        group->record.trigger = static_cast<std::int32_t>(GroupTrigger::Manual);
    GroupSelection chosen;
    EXPECT_TRUE(chosen.indices(1).empty());
    engine.activateGroup(engine.groups()[2].get());
    engine.activateGroup(engine.groups()[0].get());
    chosen.follow(engine, 7);
    EXPECT_THAT(chosen.indices(7), ElementsAre(0, 2));
    chosen.pick(engine, 1, true, 7);
    EXPECT_THAT(chosen.indices(7), ElementsAre(0, 1, 2));
    chosen.pick(engine, 0, true, 7);
    EXPECT_THAT(chosen.indices(7), ElementsAre(1, 2));
    chosen.pick(engine, 1, false, 7);
    EXPECT_THAT(chosen.indices(7), ElementsAre(1));
    EXPECT_TRUE(chosen.indices(8).empty()) << "another load";
    chosen.pick(engine, 0, true, 8);
    EXPECT_THAT(chosen.indices(8), ElementsAre(0));
    selection = {-1, 3, 99};
    edits().knobMoved(101, 0.0); // groups that do not exist
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
// The window's own surfaces: what they say, and that it can be read.
#include "gui/CLookAndFeel.h"
#include "gui/CPlayerKeyboard.h"
#include "gui/Notices.h"
#include "gui/Theme.h"
#include "tests/gui/support/WindowFixture.h"

#include <gmock/gmock.h>

#include <cmath>
#include <ctime>

namespace zarno {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

double luminance(std::uint32_t argb) {
    const juce::Colour colour(argb);
    const auto linear = [](float value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.getFloatRed()) + 0.7152 * linear(colour.getFloatGreen()) +
           0.0722 * linear(colour.getFloatBlue());
}

TEST(Theme, EveryTextAndMarkStandsOut) {
    for (const auto& pair : theme::pairs) {
        const double front = luminance(pair.front) + 0.05, back = luminance(pair.back) + 0.05;
        EXPECT_GE(std::max(front, back) / std::min(front, back), pair.leastContrast) << pair.what;
    }
}

std::vector<juce::String> texts(const std::vector<LibraryView::Row>& rows) {
    std::vector<juce::String> lines;
    for (const auto& row : rows)
        lines.push_back(row.isHeading() ? "# " + row.text : row.text);
    return lines;
}

TEST(LibraryView, ShowsFoldersAndFindsEveryWord) {
    LibraryView view;
    view.setLibrary({"Tuba 10", "Tuba 9", "Grand", "Organ"},
                    {rooted("/lib/Brass/a.zse"), rooted("/lib/Brass/b.zse"), rooted("/lib/c.zse"),
                     rooted("/user/Keys/d.zse")},
                    {rooted("/lib"), rooted("/user")}, {rooted("/user/Keys/d.zse"), rooted("/gone.zse")});
    EXPECT_THAT(texts(view.rows()), ElementsAre("# Recent", "Organ", "# Library", "Grand", "# Brass", "Tuba 9",
                                                "Tuba 10", "# Keys", "Organ"));
    EXPECT_EQ(view.rowOf(3), 8);
    EXPECT_THAT(texts(view.search("tub bras 1")), ElementsAre("Tuba 10"));
    EXPECT_THAT(texts(view.search("a")), ElementsAre("Grand", "Tuba 9", "Tuba 10", "Organ"));
    EXPECT_TRUE(view.search("x").empty());
    EXPECT_EQ(withMostRecent({"b", "a"}, "a", 2).joinIntoString(" "), "a b");
}

TEST_F(Window, TypingInTheBrowserFindsOneOfTwoThousand) {
    link.titles.clear();
    for (int i = 0; i < 2000; ++i) {
        link.titles.add("Instrument " + juce::String(i));
        link.paths.add(rooted("/library/") + juce::String(i % 40) + "/" + juce::String(i) + ".zse");
    }
    open();
    window->openBrowser();
    auto& browser = window->browser();
    browser.search("warm"); // typefaces are loaded once
    const auto start = std::clock(); // CPU time: other work on the machine does not count
    browser.search("ment 1234");
    EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 0.05);
    EXPECT_THAT(texts(browser.view().rows()), ElementsAre("Instrument 1234"));
    EXPECT_TRUE(browser.keyPressed(juce::KeyPress(juce::KeyPress::returnKey)));
    EXPECT_THAT(link.selected, ElementsAre(std::pair<int, juce::String>(1234, "")));
    EXPECT_FALSE(browser.isVisible());
}

TEST(Notices, NameTheReasonAndOneThingToDo) {
    WindowFacts facts;
    facts.instrument = "Piano";
    facts.lateReads = 1;
    EXPECT_EQ(noticeFor(facts).action, Notice::Action::Dismiss);
    facts.missing = "2 samples missing";
    EXPECT_EQ(noticeFor(facts), (Notice{"2 samples missing", Notice::Action::ShowMissing, true}));
    facts.problem = "Piano.zse ends at byte 7.";
    EXPECT_EQ(noticeFor(facts), (Notice{"Piano.zse ends at byte 7.", Notice::Action::TryAgain, true}));
    facts.hasFailed = facts.fileIsMissing = true;
    EXPECT_EQ(noticeFor(facts).action, Notice::Action::Locate);
    facts.lacksAudio = true;
    EXPECT_EQ(noticeFor(facts).action, Notice::Action::AudioSettings);
    facts.advice = "Convert it.";
    EXPECT_EQ(noticeFor(facts).text, "Convert it.");
}

TEST_F(Window, ALoadNamesItsInstrumentAndCanBeCancelled) {
    open();
    link.loading = true;
    link.index = 2;
    window->loadingStarted();
    juce::StringArray texts;
    for (auto* child : window->overlay().getChildren()) {
        if (auto* label = dynamic_cast<juce::Label*>(child)) texts.add(label->getText());
        if (auto* button = dynamic_cast<juce::TextButton*>(child)) button->onClick();
    }
    EXPECT_TRUE(texts.contains("Harp"));
    EXPECT_TRUE(texts.contains("Please wait..."));
    EXPECT_TRUE(link.isCancelled);
}

TEST_F(Window, AnEmptyLibrarySaysWhereItIs) {
    link.titles.clear();
    link.index = -1;
    open();
    EXPECT_EQ(controls().labels[0]->getText(), "Cannot find any instruments.");
    EXPECT_TRUE(window->firstRun().isVisible());
    EXPECT_FALSE(window->firstRun().getBounds().intersects(controls().labels[0]->getBounds()));
    load({});
    window->loadingFinished();
    EXPECT_FALSE(window->firstRun().isVisible());
}

TEST_F(Window, ARefusedDropSaysWhatToDo) {
    open();
    for (const auto& [file, advice] :
         {std::pair{"/a.sfz", "zarno import"}, std::pair{"/a.SF2", "zarno import"}, std::pair{"/a.wav", "is a sound"},
          std::pair{"/a.pdf", "is no instrument"}}) {
        EXPECT_TRUE(window->isInterestedInFileDrag({file}));
        window->fileDragEnter({file}, 0, 0);
        EXPECT_THAT(window->dropHighlight().text().toStdString(), HasSubstr(advice));
        window->filesDropped({file}, 0, 0);
        EXPECT_FALSE(window->dropHighlight().isVisible());
        EXPECT_THAT(window->statusBar().state().notice.text.toStdString(), HasSubstr(advice));
    }
    EXPECT_TRUE(link.selected.empty());
    window->filesDropped({"/a.wav", "/b.zs2"}, 0, 0);
    EXPECT_EQ(link.selected.size(), 1u);
    EXPECT_NE(window->statusBar().state().notice.action, Notice::Action::Dismiss);
}

class KnobValues : public Window {
  protected:
    PanelKnob& knob(std::size_t index) { return dynamic_cast<PanelKnob&>(*controls().knobs[index]); }
    juce::MouseEvent at(PanelKnob& target, float y, int modifiers) {
        return {juce::Desktop::getInstance().getMainMouseSource(), {20.0f, y}, modifiers, 1.0f, 0.0f, 0.0f, 0.0f,
                0.0f, &target, &target, juce::Time(), {20.0f, 0.0f}, juce::Time(), 1, true};
    }
};

TEST_F(KnobValues, ShiftAndCtrlDragInAThousandSteps) {
    load({});
    open();
    const int left = juce::ModifierKeys::leftButtonModifier;
    for (const auto& [modifier, least, most] : {std::tuple{0, 1.0 / 300, 1.0 / 200},
                                                std::tuple{int(juce::ModifierKeys::shiftModifier), 1e-5, 1e-3},
                                                std::tuple{int(juce::ModifierKeys::ctrlModifier), 1e-5, 1e-3}}) {
        knob(0).setValue(0.5);
        knob(0).mouseDown(at(knob(0), 20.0f, left));
        knob(0).mouseDrag(at(knob(0), 19.0f, left | modifier));
        knob(0).mouseUp(at(knob(0), 19.0f, left));
        EXPECT_GE(knob(0).getValue() - 0.5, least) << modifier;
        EXPECT_LE(knob(0).getValue() - 0.5, most) << modifier;
    }
}

TEST_F(KnobValues, ADoubleClickReturnsToTheFilesValue) {
    InstrumentContents contents;
    contents.settings.volume = -12.0f;
    contents.texts.path = "/piano.zse";
    contents.groups.push_back(std::make_unique<ZGroup>("one"));
    contents.groups[0]->record.attack = 250.0f;
    link.instrument.exchange(contents);
    link.instrument.activateGroup(link.instrument.groups()[0].get());
    ++link.loads;
    open();
    link.instrument.settings().volume = 0.0f; // as a project has it
    for (const std::size_t index : {0u, 4u}) {
        knob(index).setValue(0.1, juce::sendNotificationSync);
        knob(index).mouseDoubleClick(at(knob(index), 20.0f, juce::ModifierKeys::leftButtonModifier));
    }
    EXPECT_NEAR(group(0).attack, 250.0f, 1e-3);
    EXPECT_NEAR(link.instrument.settings().volume, -12.0f, 1e-3);
}

TEST_F(KnobValues, TheBubbleShowsAndTakesValuesAndCoversNoNeighbour) {
    load({});
    open();
    auto& bubble = window->knobs().bubble();
    for (std::size_t i = 0; i < 6; ++i) {
        knob(i).setValue(0.62, juce::sendNotificationSync);
        ASSERT_TRUE(bubble.isVisible());
        for (const auto& control : controls().all)
            if (dynamic_cast<juce::Label*>(control.get()) == nullptr) {
                EXPECT_FALSE(bubble.getBounds().intersects(control->getBounds())) << i;
            }
        EXPECT_FALSE(bubble.getBounds().intersects(window->statusBar().getBounds()));
    }
    EXPECT_EQ(bubble.text(), "Pan  24.0 %");
    window->knobs().typeKnobValue(knob(4));
    bubble.field().setText("-6,5 dB");
    bubble.field().onReturnKey();
    EXPECT_NEAR(link.instrument.settings().volume, -6.5f, 1e-3);
    EXPECT_FALSE(bubble.field().isVisible());
    EXPECT_EQ(bubble.text(), "Volume  -6.50 dB");
    EXPECT_FALSE(positionFromText(2, "loud"));
}

TEST_F(Window, PickingAGroupLeavesAlwaysAndReleaseGroupsOn) {
    load("<player><knob 2='101'/></player>");
    group(1).trigger = static_cast<std::int32_t>(GroupTrigger::Always);
    for (const auto& each : link.instrument.groups())
        link.instrument.activateGroup(each.get());
    open();
    const auto activeAfter = [&](int picked, bool toggle) {
        window->pickGroup(picked, toggle);
        renderOneBlock();
        tick();
        std::string active;
        for (const auto& each : link.instrument.groups())
            active += each->active ? '1' : '0';
        return active;
    };
    EXPECT_EQ(activeAfter(2, false), "011");
    controls().knobs[0]->setValue(1.0, juce::sendNotificationSync);
    EXPECT_EQ(group(0).attack, 0.0f);
    EXPECT_EQ(group(2).attack, 1000.0f);
    EXPECT_EQ(activeAfter(0, true), "111");
    EXPECT_EQ(activeAfter(1, true), "101") << "unticked";
}

TEST_F(Window, ComputerKeysStartInTheMiddleOfWhatPlays) {
    load("<player><keyboard/></player>");
    auto zone = std::make_unique<ZZone>();
    zone->record.lowKey = 84;
    zone->record.highKey = 108;
    link.instrument.groups()[0]->addZone(std::move(zone));
    open();
    auto* keyboard = controls().keyboards[0];
    EXPECT_EQ(keyboard->octave(), 7);
    EXPECT_TRUE(window->keyPressed(juce::KeyPress('z', {}, 'z')));
    EXPECT_EQ(keyboard->octave(), 6);
    EXPECT_THAT(keyboard->getTooltip().toStdString(), HasSubstr("C5"));
    EXPECT_EQ(keyName(60), "C4");
    EXPECT_EQ(keyboard->getOctaveForMiddleC(), 4);
}

TEST_F(Window, TabGoesByRows) {
    load("<player><knob 2='1' x='200' y='11'/><knob 2='2' x='10' y='80'/><knob 2='3' x='10' y='10'/></player>");
    open();
    EXPECT_LT(controls().knobs[2]->getExplicitFocusOrder(), controls().knobs[0]->getExplicitFocusOrder());
    EXPECT_LT(controls().knobs[0]->getExplicitFocusOrder(), controls().knobs[1]->getExplicitFocusOrder());
}

TEST_F(Window, AboutListsTheKeyswitches) {
    load({}, {"Sustained", "Muted"});
    for (const int i : {0, 1}) {
        group(i).trigger = static_cast<std::int32_t>(GroupTrigger::Note);
        group(i).keyswitchNote = 24 + i;
    }
    link.instrument.texts().remark = "Two articulations.";
    open();
    window->openAbout();
    EXPECT_TRUE(window->about().isVisible());
    EXPECT_EQ(window->about().info().remark, "Two articulations.");
    EXPECT_THAT(window->about().info().keyswitches,
                ElementsAre(std::pair<juce::String, juce::String>("C1", "Sustained"),
                            std::pair<juce::String, juce::String>("C#1", "Muted")));
}

class WindowOnScreenNames : public Window {};

TEST_F(WindowOnScreenNames, ReachAssistiveProgramsWithTheirValues) {
    load({});
    open();
    window->addToDesktop(0);
    std::vector<juce::Component*> parts = {&window->statusBar()};
    for (auto* child : window->statusBar().getChildren())
        if (child->isVisible() && child->getWantsKeyboardFocus()) parts.push_back(child);
    for (const auto& control : controls().all)
        if (control->getWantsKeyboardFocus()) parts.push_back(control.get());
    for (auto* part : parts) {
        ASSERT_NE(part->getAccessibilityHandler(), nullptr);
        EXPECT_TRUE(part->getAccessibilityHandler()->getTitle().isNotEmpty()) << typeid(*part).name();
    }
    controls().knobs[4]->setValue(1.0, juce::sendNotificationSync);
    EXPECT_EQ(controls().knobs[4]->getAccessibilityHandler()->getValueInterface()->getCurrentValueAsString(),
              "6.00 dB");
}

TEST(LevelMeter, ShowsDecibelsAndKeepsTheClipMark) {
    EXPECT_EQ(LevelMeter::fractionFor(1.0f), 1.0f);
    EXPECT_NEAR(LevelMeter::fractionFor(0.1f), 2.0f / 3.0f, 1e-4);
    EXPECT_EQ(LevelMeter::fractionFor(0.0f), 0.0f);
    const juce::ScopedJuceInitialiser_GUI framework;
    LevelMeter meter;
    meter.show(1.0f);
    meter.show(0.0f);
    EXPECT_TRUE(meter.isClipMarkLit());
}

} // namespace
} // namespace zarno

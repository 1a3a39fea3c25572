// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineEvent.h"
#include "gui/CLookAndFeel.h"
#include "gui/CPlayerKeyboard.h"
#include "gui/WindowMenus.h"
#include "tests/gui/support/WindowFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace zarno {
namespace {

using testing::ElementsAre;
using Selected = std::pair<int, juce::String>;

TEST_F(Window, SaysWhatIsLoaded) {
    open();
    const auto title = [this] { return controls().labels[0]->getText(); };
    EXPECT_EQ(title(), "No instrument loaded");
    link.titles.clear();
    window->rebuildPlayer();
    EXPECT_EQ(title(), "Cannot find any instruments.");
    load({}, {"soft", "loud"});
    link.instrument.activateGroup(link.instrument.groups()[1].get());
    window->loadingFinished();
    EXPECT_EQ(title(), "Bright Piano");
    EXPECT_EQ(controls().labels[1]->getText(), "soft, loud");
    EXPECT_EQ(window->getWidth(), 593);
    EXPECT_EQ(window->getHeight(), 242 + StatusBar::height);
    load("<player width='700' height='300'><label 2='1'/><label 2='3' 8='own text'/></player>");
    window->loadingFinished();
    EXPECT_EQ(controls().labels[0]->getText(), "Bright Piano");
    EXPECT_EQ(controls().labels[1]->getText(), "own text");
    EXPECT_EQ(window->getWidth(), 700);
}

TEST_F(Window, ControlsFollowTheEngineWithoutTellingIt) {
    load("<player><knob 2='2'/><knob 2='101'/><knob 2='250'/><combo 2='3'/><button 2='3' 3='1'/></player>");
    group(0).attack = 500.0f;
    open();
    EXPECT_NEAR(controls().knobs[1]->getValue(), 0.75, 1e-6);
    link.instrument.settings().volume = -12.0f;
    link.instrument.settings().playMode = 2;
    link.instrument.postEvent(midi::controller, 0, 50, 127, immediateOffset);
    renderOneBlock();
    tick();
    EXPECT_NEAR(controls().knobs[0]->getValue(), 0.5, 1e-6);
    EXPECT_NEAR(controls().knobs[2]->getValue(), 1.0, 1e-4);
    EXPECT_EQ(controls().combos[0]->getText(), "Legato");
    EXPECT_TRUE(controls().buttons[0]->getToggleState());
    EXPECT_EQ(link.edits, 0);
}

TEST_F(Window, AControlThatTheUserMovedStaysUntilTheEngineHasFollowed) {
    load("<player><knob 2='250'/><knob 2='9'/></player>");
    open();
    controls().knobs[0]->setValue(0.5, juce::sendNotificationSync);
    tick(); // no block yet
    EXPECT_EQ(controls().knobs[0]->getValue(), 0.5);
    renderOneBlock();
    tick();
    EXPECT_EQ(controls().knobs[0]->getValue(), 0.5);
    EXPECT_EQ(link.instrument.controllerValue(50), 63);

    auto* bend = controls().knobs[1];
    EXPECT_EQ(bend->getValue(), 0.5);
    link.instrument.setPitchBend(0.5f);
    tick();
    EXPECT_NEAR(bend->getValue(), 0.75, 1e-6);
    window->sliderDragEnded(bend);
    EXPECT_EQ(bend->getValue(), 0.5);
    EXPECT_EQ(link.instrument.pitchBend(), 0.0f);
}

TEST_F(Window, KnobsAndCombosWriteWhatTheyShow) {
    load("<player><knob 2='3'/><combo 2='100'/><combo 2='1'/></player>");
    open();
    controls().knobs[0]->setValue(0.0, juce::sendNotificationSync);
    EXPECT_EQ(link.instrument.settings().pan, -1.0f);
    controls().combos[0]->setSelectedItemIndex(0, juce::sendNotificationSync);
    EXPECT_EQ(group(0).trigger, 0);
    EXPECT_EQ(group(1).trigger, 5);
    controls().combos[1]->setSelectedItemIndex(1, juce::sendNotificationSync);
    EXPECT_EQ(link.instrument.settings().quality, 1);
    EXPECT_EQ(link.edits, 3);
}

TEST_F(Window, ButtonsStepThroughLibraryAndGroupsAndStopAtTheEnds) {
    load("<player><button 2='4'/><button 2='5'/><button 2='7'/><button 2='100' 3='1'/><button "
         "2='6'/></player>");
    open();
    click(0);
    click(1);
    link.index = 0;
    click(0);
    link.index = 2;
    click(1);
    EXPECT_THAT(link.selected, ElementsAre(Selected(0, ""), Selected(2, "")));

    for (const int expected : {1, 2, 2}) { // no wrap behind the last group
        click(2);
        renderOneBlock();
        tick();
        EXPECT_EQ(link.instrument.currentGroupIndex(), expected);
    }
    controls().buttons[3]->setToggleState(true, juce::dontSendNotification);
    click(3);
    EXPECT_EQ(group(2).excluded, 1);
    EXPECT_EQ(group(0).excluded, 0);
    link.instrument.settings().volume = -20.0f;
    click(4);
    EXPECT_EQ(link.instrument.settings().volume, 0.0f);
}

TEST_F(Window, DoesNothingToAnEngineThatIsBeingLoaded) {
    load("<player><knob 2='3'/><button 2='7'/></player>");
    open();
    juce::WaitableEvent locked, done;
    std::thread loader([&] {
        const juce::ScopedLock contents(link.lock);
        locked.signal();
        done.wait();
    });
    locked.wait();
    link.loading = true;
    window->loadingStarted();
    EXPECT_TRUE(window->overlay().isVisible());
    controls().knobs[0]->setValue(1.0, juce::sendNotificationSync);
    click(0);
    tick();
    window->rebuildPlayer();
    EXPECT_EQ(link.instrument.settings().pan, 0.0f);
    EXPECT_EQ(controls().knobs.size(), 6u) << "the built-in panel meanwhile";
    done.signal();
    loader.join();
    link.loading = false;
    window->loadingFinished();
    EXPECT_FALSE(window->overlay().isVisible());
    EXPECT_EQ(controls().knobs.size(), 1u);
}

TEST_F(Window, ZoomScalesDrawnAndHitAreasAndIsKept) {
    load("<player width='500' height='200'><button x='100' y='100' width='20' height='20' 2='5'/></player>");
    link.settings["zoom"] = "200";
    open();
    EXPECT_EQ(window->getWidth(), 1000);
    EXPECT_EQ(window->getHeight(), 2 * (200 + StatusBar::height));
    EXPECT_EQ(window->getComponentAt(225, 225), controls().buttons[0]);
    EXPECT_NE(window->getComponentAt(110, 110), controls().buttons[0]);
    window->setZoom(75);
    EXPECT_EQ(window->getWidth(), 375);
    EXPECT_EQ(link.settings["zoom"], "75");
    EXPECT_EQ(zoomFromSetting("133"), 125);
    EXPECT_EQ(zoomFromSetting("x"), 100);
    EXPECT_EQ(zoomFromSetting("100000"), 300);
}

TEST_F(Window, TypingFindsOneOfFiveHundredInstruments) {
    link.titles.clear();
    for (int i = 0; i < 500; ++i)
        link.titles.add(juce::String(i % 2 == 0 ? "Tuba " : "Harp ") + juce::String(1000 + i * 37 % 500));
    open();
    window->openInstrumentList();
    auto& list = dynamic_cast<juce::ListBox&>(*window->instrumentList().getChildComponent(0));
    const int row = link.titles.indexOf("Harp 1317");
    const auto isInView = [&] { return list.getLocalBounds().contains(list.getRowPosition(row, true)); };
    EXPECT_FALSE(isInView());
    EXPECT_LT(list.getViewport()->getViewedComponent()->getNumChildComponents(), 30) << "rows in view alone";
    for (const char key : std::string("harp 1317"))
        EXPECT_TRUE(list.keyPressed({key, {}, static_cast<juce::juce_wchar>(key)}));
    EXPECT_EQ(list.getSelectedRow(), row);
    EXPECT_TRUE(isInView());
    EXPECT_TRUE(list.keyPressed(juce::KeyPress(juce::KeyPress::returnKey)));
    EXPECT_THAT(link.selected, ElementsAre(Selected(row, "")));
    EXPECT_FALSE(window->instrumentList().isVisible());

    window->openInstrumentList();
    for (const auto place : {list.getVerticalScrollBar().getBounds().getCentre(),
                             list.getRowPosition(link.index, true).getCentre()}) {
        EXPECT_TRUE(window->instrumentList().isVisible());
        window->instrumentList().mouseDoubleClick(
            {juce::Desktop::getInstance().getMainMouseSource(), place.toFloat(), {}, 1.0f, 0.0f, 0.0f, 0.0f,
             0.0f, &list, &list, juce::Time(), place.toFloat(), juce::Time(), 2, false});
    }
    EXPECT_FALSE(window->instrumentList().isVisible());
}

class WindowOnScreen : public Window {};

// Needs a display: without one no point lies in a window.
TEST_F(WindowOnScreen, NotesOfItsKeyboardEndWithIt) {
    load("<player><keyboard width='400' height='60'/></player>");
    open();
    window->addToDesktop(0);
    auto& state = window->panel().keyboardState();
    auto* keyboard = controls().keyboards[0];
    juce::MouseEvent press(juce::Desktop::getInstance().getMainMouseSource(), {100.0f, 50.0f},
                           juce::ModifierKeys::leftButtonModifier, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, keyboard,
                           keyboard, juce::Time(), {100.0f, 50.0f}, juce::Time(), 1, false);
    keyboard->mouseDown(press);
    const int key = keyboard->getNoteAndVelocityAtPosition({100.0f, 50.0f}).note;
    EXPECT_GE(key, 0);
    EXPECT_TRUE(state.isNoteOn(1, key));
    window->rebuildPlayer();
    EXPECT_FALSE(state.isNoteOn(1, key));
}

TEST_F(WindowOnScreen, FilesDroppedOnItLoad) {
    open();
    window->addToDesktop(0);
    juce::ComponentPeer::DragInfo drag;
    drag.position = controls().keyboards[0]->getBounds().getCentre(); // wherever in the window
    for (const char* file : {"/a.wav", "/b.ZSE"}) { // the first is refused, and does not bar the second
        drag.files = {file};
        EXPECT_TRUE(window->getPeer()->handleDragMove(drag)) << file;
        EXPECT_TRUE(window->getPeer()->handleDragDrop(drag)) << file;
        window->filesDropped(drag.files, 0, 0); // which JUCE posts
    }
    EXPECT_THAT(link.selected, ElementsAre(Selected(-1, "/b.ZSE")));
}

TEST_F(WindowOnScreen, TakesTheMouseOnEveryControlWhileAudioRuns) {
    std::string elements = "<keyboard x='0' y='210' width='600' height='40'/>";
    int column = 0;
    for (const int id : {1, 2, 3, 4, 5, 6, 7, 8, 9, 100, 101, 102, 103, 104, 105, 250})
        for (const auto& [tag, y] : {std::pair{"knob", 0}, std::pair{"combo", 70}, std::pair{"button", 140}})
            elements += juce::String("<TAG x='X' y='Y' width='30' 2='ID' 3='1'/>")
                            .replace("TAG", tag)
                            .replace("X", juce::String(column++ / 3 * 32))
                            .replace("Y", juce::String(y))
                            .replace("ID", juce::String(id))
                            .toStdString();
    load("<player>" + elements + "</player>");
    open();
    window->addToDesktop(0);
    std::atomic<bool> done{false};
    std::thread audio([&] {
        for (int block = 0; !done; ++block) {
            link.route.handOver(juce::MidiMessage::noteOn(1, 40 + block % 40, 0.5f), 3);
            link.route.handOver(juce::MidiMessage::noteOff(1, 40 + (block + 20) % 40), 9);
            renderOneBlock();
        }
    });
    const auto mouse = [&](juce::Component& control, float x, float y, int buttons) {
        const juce::Point<float> at(static_cast<float>(control.getWidth()) * x,
                                    static_cast<float>(control.getHeight()) * y);
        window->getPeer()->handleMouseEvent(
            juce::MouseInputSource::InputSourceType::mouse, window->getLocalPoint(&control, at), buttons,
            juce::MouseInputSource::defaultPressure, juce::MouseInputSource::defaultOrientation,
            juce::Time::currentTimeMillis());
    };
    int held = 0;
    for (int round = 0; round < 10; ++round) {
        for (const auto& control : controls().all) {
            mouse(*control, 0.5f, 0.5f, 0);
            for (const float place : {0.5f, 0.1f, 0.9f, 0.3f}) {
                mouse(*control, place, place, juce::ModifierKeys::leftButtonModifier);
                held += control->isMouseButtonDown() ? 1 : 0;
                tick();
            }
            mouse(*control, 0.5f, 0.5f, 0);
        }
        for (auto* combo : controls().combos)
            combo->setSelectedItemIndex(round % std::max(1, combo->getNumItems()),
                                        juce::sendNotificationSync);
        window->rebuildPlayer();
    }
    done = true;
    audio.join();
    EXPECT_EQ(held, 10 * 4 * 49) << "every control had the mouse";
    EXPECT_GT(link.edits, 100);
}

#if !JUCE_WINDOWS // where it is the system's own box
TEST_F(WindowOnScreen, TellsOncePerLoadWhatIsWrongWithAPanel) {
    auto& boxes = *juce::ModalComponentManager::getInstance();
    for (const auto& [layout, caption] :
         {std::pair{"<panel/>", "Zarno Sampler Player"}, std::pair{"", "Layout XML Format Error"},
          std::pair{"<player><label", "Layout XML Format Error"}}) {
        load(layout);
        for (const int expected : {1, 0}) {
            open();
            ASSERT_EQ(boxes.getNumModalComponents(), expected);
            if (expected == 0) break;
            EXPECT_EQ(boxes.getModalComponent(0)->getName(), caption);
            window.reset();
            EXPECT_EQ(boxes.getNumModalComponents(), 0) << "it goes with its window";
        }
    }
}
#endif

std::vector<std::string> describe(const juce::PopupMenu& menu) {
    std::vector<std::string> lines;
    for (juce::PopupMenu::MenuItemIterator items(menu); items.next();) {
        const auto& item = items.getItem();
        if (item.isSeparator) continue;
        const juce::String id = item.isSectionHeader ? "# "
                                : item.isEnabled     ? juce::String(item.itemID) + " "
                                                     : "- ";
        lines.push_back((id + item.text + (item.isTicked ? " *" : "")).toStdString());
    }
    return lines;
}

TEST(Menus, ListInstrumentsGroupsAndWhatIsMissing) {
    EXPECT_THAT(describe(makeInstrumentMenu({}, -1)), ElementsAre("# Instrument List"));
    EXPECT_THAT(describe(makeInstrumentMenu({"A", "B"}, 1)),
                ElementsAre("# Instrument List", "1 A", "2 B *"));
    EXPECT_THAT(describe(makeGroupMenu({}, {})), ElementsAre("# Group List"));
    EXPECT_THAT(describe(makeGroupMenu({{"x", ""}, {"y", "always"}, {"z", ""}}, {0, 2})),
                ElementsAre("# Group List", "1 x *", "2 y", "3 z *", "- With Ctrl or Shift: add or take away"));

    EditorLink::Missing missing;
    EXPECT_EQ(missingText(missing), "");
    missing.notFound = {"C:\\Samples\\a.wav"};
    EXPECT_EQ(missingText(missing), "1 sample missing");
    missing.unsupported = {"/s/b.wav", "/s/c.wav"};
    EXPECT_THAT(describe(makeMissingMenu(missing)),
                ElementsAre("# 3 samples missing", "- a.wav - not found", "- b.wav - format not supported",
                            "- c.wav - format not supported", "1 Locate\xE2\x80\xA6"));
}

TEST(InstrumentList, TypingJumpsToAName) {
    const juce::StringArray titles{"Grand Piano", "Organ", "Pan Flute", "organ II"};
    EXPECT_EQ(InstrumentListPanel::rowFor("org", titles), 1);
    EXPECT_EQ(InstrumentListPanel::rowFor("pan", titles), 2);
    EXPECT_EQ(InstrumentListPanel::rowFor("organ i", titles), 3);
    EXPECT_EQ(InstrumentListPanel::rowFor("piano", titles), 0);
    EXPECT_EQ(InstrumentListPanel::rowFor("x", titles), -1);
    EXPECT_EQ(InstrumentListPanel::rowFor("", titles), -1);
}

TEST(LookAndFeel, TheDefaultPassesToOneThatIsStillThere) {
    const juce::ScopedJuceInitialiser_GUI framework;
    auto first = std::make_unique<CLookAndFeel>();
    auto second = std::make_unique<CLookAndFeel>();
    first->install();
    second->install();
    EXPECT_EQ(&juce::LookAndFeel::getDefaultLookAndFeel(), second.get());
    second.reset();
    EXPECT_EQ(&juce::LookAndFeel::getDefaultLookAndFeel(), first.get());
    first.reset();
    EXPECT_NE(dynamic_cast<juce::LookAndFeel_V4*>(&juce::LookAndFeel::getDefaultLookAndFeel()), nullptr);
}

} // namespace
} // namespace zarno

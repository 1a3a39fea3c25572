// SPDX-License-Identifier: GPL-3.0-or-later
// What the host and other threads do while the window is open.
#include "tests/gui/support/WindowFixture.h"

#include <thread>

namespace zarno {
namespace {

juce::MidiMessage note(int status, int key, int velocity) {
    return {status, key, velocity};
}

TEST(KeyboardRoute, HostNotesReachTheEngineUnchangedWhileTheWindowIsOpen) {
    for (const bool isOpen : {false, true}) {
        ZInstrument engine;
        for (const int key : {36, 37}) {
            auto& record = engine.createGroup("group").record;
            record.trigger = static_cast<std::int32_t>(GroupTrigger::Note);
            record.keyswitchNote = key;
        }
        KeyboardRoute route(engine);
        juce::MidiKeyboardState state;
        if (isOpen) route.publish(&state);
        float left[8], right[8];
        float* outputs[] = {left, right};
        for (const auto& event : {note(0x90, 36, 90), note(0x90, 37, 90), note(0x90, 36, 0)}) {
            route.handOver(event, 0);
            engine.renderBlock(outputs, 2, 8);
        }
        EXPECT_EQ(engine.currentGroupIndex(), 0) << "velocity 0 switches groups, window open: " << isOpen;
        route.publish(nullptr);
    }
}

TEST(KeyboardRoute, KeysFollowNotesThatComeDuringAMouseEvent) {
    ZInstrument engine;
    KeyboardRoute route(engine);
    juce::MidiKeyboardState state;
    route.publish(&state);
    route.handOver(note(0x90, 60, 90), 0);
    {
        const KeyboardRoute::Hold mouse(route);
        route.handOver(note(0x80, 60, 0), 0);
        route.handOver(note(0x91, 62, 90), 0);
    }
    EXPECT_FALSE(state.isNoteOn(1, 60));
    EXPECT_TRUE(state.isNoteOn(2, 62));

    std::atomic<bool> done{false};
    std::thread audio([&] {
        for (int i = 0; i < 20000; ++i) {
            route.handOver(note(0x90, 40 + i % 8, 90), 0);
            route.handOver(note(0x80, 40 + i % 8, 0), 0);
        }
        done = true;
    });
    while (!done)
        const KeyboardRoute::Hold mouse(route);
    audio.join();
    for (int key = 40; key < 48; ++key)
        EXPECT_FALSE(state.isNoteOn(1, key)) << key;
    route.publish(nullptr);
}

// Another thread that has the engine's contents, as saving a project does.
class Saving {
  public:
    explicit Saving(const juce::CriticalSection& lock)
        : thread_([&lock, this] {
            const juce::ScopedLock contents(lock);
            locked_.signal();
            done_.wait();
        }) {
        locked_.wait();
    }
    ~Saving() {
        done_.signal();
        thread_.join();
    }

  private:
    juce::WaitableEvent locked_, done_;
    std::thread thread_;
};

TEST_F(Window, TakesUpWhatItCouldNotReadWhileTheProjectIsSaved) {
    load("<player width='700'><knob 2='3'/><label 2='1'/></player>");
    {
        const Saving saving(link.lock);
        open();
    }
    tick();
    ASSERT_EQ(controls().knobs.size(), 1u) << "the instrument's own panel";
    EXPECT_EQ(window->getWidth(), 700);
    EXPECT_EQ(controls().labels[0]->getText(), "Bright Piano");
    {
        const Saving saving(link.lock);
        controls().knobs[0]->setValue(0.0, juce::sendNotificationSync);
        controls().knobs[0]->setValue(1.0, juce::sendNotificationSync);
    }
    tick();
    EXPECT_EQ(link.instrument.settings().pan, 1.0f);
    EXPECT_EQ(controls().knobs[0]->getValue(), 1.0);
}

TEST_F(Window, APlayModeButtonStaysOnWhenItIsClickedAgain) {
    load("<player><button 2='2' 3='1'/><button 2='3' 3='1'/></player>");
    open();
    for (const int clicked : {0, 0, 1, 1}) {
        auto* button = controls().buttons[static_cast<std::size_t>(clicked)];
        button->setToggleState(!button->getToggleState(), juce::dontSendNotification);
        click(clicked);
        tick();
        EXPECT_EQ(controls().buttons[0]->getToggleState(), clicked == 0);
        EXPECT_EQ(controls().buttons[1]->getToggleState(), clicked == 1);
    }
}

TEST_F(Window, AnInstrumentWithoutANameIsCalledByItsFile) {
    load({});
    link.instrument.texts().name.clear();
    open();
    EXPECT_EQ(controls().labels[0]->getText(), "piano");
}

TEST_F(Window, ADraggedBendKnobLetsGoWhenItsPanelGoes) {
    for (const bool closes : {false, true}) {
        load("<player><knob 2='9'/></player>");
        open();
        auto* bend = controls().knobs[0];
        window->sliderDragStarted(bend);
        bend->setValue(0.9, juce::sendNotificationSync);
        ASSERT_GT(link.instrument.pitchBend(), 0.0f);
        if (closes)
            window.reset();
        else
            window->loadingFinished();
        EXPECT_EQ(link.instrument.pitchBend(), 0.0f) << closes;
    }
}

class WindowOnScreenOfHost : public Window {};

TEST_F(WindowOnScreenOfHost, HearsFromTheProcessorOnlyWhileItIsAttached) {
    load({});
    open(); // asked for its size
    EXPECT_EQ(link.window, nullptr);
    load("<player width='700'/>");
    window->addToDesktop(0);
    EXPECT_EQ(link.window, window.get());
    EXPECT_EQ(window->getWidth(), 700) << "loaded in between";
    window->removeFromDesktop();
    tick();
    EXPECT_EQ(link.window, nullptr);
}

juce::String barTexts(StatusBar& bar) {
    juce::StringArray texts;
    for (auto* child : bar.getChildren()) {
        if (auto* button = dynamic_cast<juce::TextButton*>(child); button != nullptr && button->isVisible())
            texts.add(button->getButtonText());
        if (auto* label = dynamic_cast<juce::Label*>(child)) texts.add(label->getText());
    }
    return texts.joinIntoString("|");
}

TEST_F(Window, NamesAMissingInstrumentAndOffersToLocateIt) {
    link.succeeded = false;
    link.report = {"b.zse", "b.zse is not there.", true, true};
    open();
    EXPECT_TRUE(barTexts(window->statusBar()).contains("b.zse is not there."));
    EXPECT_TRUE(barTexts(window->statusBar()).contains("Locate"));
    EXPECT_FALSE(barTexts(window->statusBar()).contains("Try again"));

    link.report = {"b.zse", "b.zse is cut short.", false, false}; // loaded all the same
    link.succeeded = true;
    window->loadingFinished();
    EXPECT_TRUE(barTexts(window->statusBar()).contains("b.zse is cut short."));
    EXPECT_FALSE(barTexts(window->statusBar()).contains("Locate"));
}

#if !JUCE_WINDOWS // which has a box of the system's: tests/host/message_box_win32.cpp
int openBoxes() {
    int boxes = 0;
    for (int i = 0; i < juce::Desktop::getInstance().getNumComponents(); ++i)
        boxes += dynamic_cast<juce::AlertWindow*>(juce::Desktop::getInstance().getComponent(i)) != nullptr;
    return boxes;
}

TEST_F(WindowOnScreenOfHost, AFailedLoadShowsOneBoxThatGoesWithTheWindow) {
    open();
    window->addToDesktop(0);
    link.window->loadFailed();
    EXPECT_EQ(openBoxes(), 1);
    link.window->loadFailed();
    EXPECT_EQ(openBoxes(), 1) << "the former one goes";
    window.reset();
    EXPECT_EQ(openBoxes(), 0);
}
#endif

} // namespace
} // namespace zarno

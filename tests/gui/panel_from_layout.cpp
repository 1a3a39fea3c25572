// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/CKnob.h"
#include "gui/CLookAndFeel.h"
#include "gui/CPlayerGUI.h"
#include "gui/CPlayerKeyboard.h"
#include "gui/DefaultLayout.h"
#include "tests/gui/support/PictureDistance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace zarno {
namespace {

using testing::ElementsAre;

juce::Image strip(int width, int height) {
    juce::Image image(juce::Image::RGB, width, height, true);
    return image;
}

// A picture as a layout carries it: frame n of a strip is n * 20 grey.
std::string encodedStrip(int frames, int size, bool horizontal) {
    juce::Image image(juce::Image::RGB, horizontal ? frames * size : size, horizontal ? size : frames * size,
                      true);
    for (int i = 0; i < frames; ++i) {
        const auto grey = static_cast<juce::uint8>(i * 20);
        image.clear({horizontal ? i * size : 0, horizontal ? 0 : i * size, size, size},
                    juce::Colour(grey, grey, grey));
    }
    juce::MemoryOutputStream png;
    juce::PNGImageFormat().writeImageToStream(image, png);
    return png.getMemoryBlock().toBase64Encoding().toStdString();
}

int greyAt(const juce::Image& image, int x, int y) {
    return image.getPixelAt(x, y).getRed();
}

class PanelFromLayout : public testing::Test {
  protected:
    void build(const std::string& elements) { panel.rebuild("<player>" + elements + "</player>", {}); }
    static juce::Image picture(juce::Component& component) {
        return component.createComponentSnapshot(component.getLocalBounds());
    }

    juce::ScopedJuceInitialiser_GUI framework;
    std::vector<std::pair<juce::String, juce::String>> boxes; // caption, text
    CPlayerGUI panel{{}, nullptr, [this](const juce::String& caption, const juce::String& text) {
                         boxes.emplace_back(caption, text);
                     }};
};

TEST_F(PanelFromLayout, TheBuiltInOneHasItsControlsInPlace) {
    for (int round = 0; round < 2; ++round) { // building again leaves one set
        panel.rebuild(defaultLayout, {});
        const auto& controls = panel.controls();
        EXPECT_EQ(panel.getNumChildComponents(), 10);
        EXPECT_EQ(controls.labels.size(), 2u);
        EXPECT_EQ(controls.knobs.size(), 6u);
        EXPECT_EQ(controls.combos.size(), 0u);
        EXPECT_EQ(controls.buttons.size(), 1u);
        ASSERT_EQ(controls.keyboards.size(), 1u);
        EXPECT_EQ(controls.keyboards[0]->getRangeStart(), 36);
        EXPECT_EQ(controls.keyboards[0]->getRangeEnd(), 95);
        EXPECT_EQ(controls.knobs[3]->getBounds(), juce::Rectangle<int>(309, 124, 40, 40));
        EXPECT_EQ(controls.knobs[0]->findColour(juce::Slider::rotarySliderFillColourId),
                  juce::Colour(0x7fdadadc));
        EXPECT_EQ(controls.labels[1]->findColour(juce::Label::textColourId), juce::Colours::white);
        EXPECT_EQ(panel.getBounds(), juce::Rectangle<int>(0, 0, 593, 242));
    }
    EXPECT_TRUE(boxes.empty());
}

TEST_F(PanelFromLayout, EachElementBecomesItsKindOfControl) {
    build("<images><5>" + encodedStrip(10, 40, false) +
          "</5></images>"
          "<label 8='Name' 5='36' 7='20'/><knob 2='1'/><knob 1='5' x='7' y='8' width='30' height='31'/>"
          "<knob 1='99'/><combo 2='4'/><combo 2='7'/><button 8='Go' 3='true' 9='x'/><button 1='5'/><button "
          "1='0' 2='9'/>"
          "<keyboard 3='1' 4='48,72'/><other/>");
    const auto& controls = panel.controls();
    ASSERT_EQ(controls.knobs.size(), 3u);
    EXPECT_EQ(dynamic_cast<CKnob*>(controls.knobs[0]), nullptr);
    EXPECT_EQ(controls.knobs[0]->getSliderStyle(), juce::Slider::RotaryVerticalDrag);
    EXPECT_EQ(controls.knobs[0]->getRange(), juce::Range<double>(0.0, 1.0));
    EXPECT_EQ(controls.knobs[0]->getInterval(), 0.0);
    ASSERT_NE(dynamic_cast<CKnob*>(controls.knobs[1]), nullptr);
    EXPECT_EQ(controls.knobs[1]->getBounds(), juce::Rectangle<int>(7, 8, 30, 31)) << "the layout's size wins";
    EXPECT_EQ(dynamic_cast<CKnob*>(controls.knobs[2]), nullptr) << "no such image: a plain one";

    EXPECT_EQ(controls.labels[0]->getText(), "Name");
    EXPECT_EQ(controls.labels[0]->getJustificationType().getFlags(), 36);
    EXPECT_EQ(controls.labels[0]->getFont().getHeight(), 20.0f);
    ASSERT_EQ(controls.combos.size(), 2u);
    EXPECT_EQ(controls.combos[0]->getNumItems(), 5);
    EXPECT_EQ(controls.combos[0]->getItemId(0), 1);
    EXPECT_EQ(controls.combos[1]->getNumItems(), 0);

    ASSERT_EQ(controls.buttons.size(), 3u);
    EXPECT_NE(dynamic_cast<juce::TextButton*>(controls.buttons[0]), nullptr);
    EXPECT_TRUE(controls.buttons[0]->getClickingTogglesState());
    EXPECT_EQ(controls.buttons[0]->getButtonText(), "Go");
    EXPECT_EQ(controls.buttons[1]->getName(), "button");
    EXPECT_NE(dynamic_cast<DefaultStripButton*>(controls.buttons[2]), nullptr);
    EXPECT_TRUE(controls.keyboards[0]->showsNames());

    const auto& properties = controls.buttons[0]->getProperties();
    EXPECT_EQ(properties["2"], juce::var(-1));
    EXPECT_EQ(properties["9"], juce::var("x"));
    EXPECT_EQ(properties["3"], juce::var("true"));
    EXPECT_EQ(controls.knobs[2]->getProperties()["1"], juce::var(99));
    EXPECT_EQ(panel.getWidth(), 600);
    EXPECT_EQ(panel.getHeight(), 250);
}

TEST_F(PanelFromLayout, EveryColourReachesItsControl) {
    for (const auto& [id, kind, what] : layoutColours) {
        build("<combo " + std::to_string(id + layoutColourOffset) + "='66dfc4c4'/>");
        EXPECT_EQ(panel.controls().combos[0]->findColour(id), juce::Colour(0x66dfc4c4)) << id;
    }
}

TEST_F(PanelFromLayout, NumbersMayBeLargerThanPixels) {
    build("<images><40000>" + encodedStrip(10, 12, true) + "</40000></images><knob 1='40000' 2='2000000123'/>");
    EXPECT_NE(dynamic_cast<CKnob*>(panel.controls().knobs[0]), nullptr);
    EXPECT_EQ(PanelBuilder::idOf(*panel.controls().knobs[0]), 2000000123);
}

TEST_F(PanelFromLayout, ACombosButtonColourIsPainted) {
    CLookAndFeel lookAndFeel;
    lookAndFeel.install();
    build("<combo width='80' height='20' 2='3' 16780644='ff00ff00'/>");
    const auto shown = picture(*panel.controls().combos[0]);
    EXPECT_EQ(shown.getPixelAt(76, 14), juce::Colour(0xff00ff00));
    EXPECT_NE(shown.getPixelAt(40, 14), juce::Colour(0xff00ff00));
}

TEST_F(PanelFromLayout, TheDefaultStripIsOpaqueUnderTheMouse) {
    build("<button 1='0' width='34' height='34'/>");
    auto& button = dynamic_cast<DefaultStripButton&>(*panel.controls().buttons[0]);
    juce::Image pictures[2];
    for (const bool isOver : {false, true}) {
        auto& image = pictures[isOver ? 1 : 0] = juce::Image(juce::Image::ARGB, 34, 34, true);
        juce::Graphics g(image);
        button.paintButton(g, isOver, false);
    }
    EXPECT_EQ(pictures[1].getPixelAt(17, 17), pictures[0].getPixelAt(17, 17));
}

TEST_F(PanelFromLayout, AFaceThatIsNotThereIsDrawnAsTheDefaultOne) {
    CLookAndFeel lookAndFeel;
    lookAndFeel.install();
    build("<label 8='Agp' width='200'/><label 8='Agp' 6='No Such Face' width='200'/>");
    const auto& labels = panel.controls().labels;
    EXPECT_EQ(pictureDistance(picture(*labels[0]), picture(*labels[1])), 0.0);
    labels[0]->setText({}, juce::dontSendNotification);
    EXPECT_GT(pictureDistance(picture(*labels[0]), picture(*labels[1])), 5.0) << "there is text";
}

TEST_F(PanelFromLayout, BadLayoutsAreToldOnceAndLeaveOnlyTheBackground) {
    panel.rebuild("<panel/>", {});
    EXPECT_EQ(panel.getBounds(), juce::Rectangle<int>(0, 0, 593, 242)) << "there is room for the background";
    panel.rebuild("<player width='700'><knob/></player>", {});
    panel.rebuild("<player><label", {});
    EXPECT_EQ(panel.getNumChildComponents(), 0);
    EXPECT_EQ(panel.getWidth(), 700);
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0],
              std::make_pair(juce::String("Zarno Sampler Player"), juce::String("No Player Node found")));
    EXPECT_EQ(boxes[1].first, "Layout XML Format Error");
}

TEST_F(PanelFromLayout, EveryControlHasANameAndAPlaceInTabOrder) {
    std::string elements;
    for (const char* id : {"1", "2", "3", "4", "5", "6", "7", "8", "9", "100", "101", "105", "250", "-1"})
        for (const char* tag : {"knob", "combo", "button"})
            elements += std::string("<") + tag + " 2='" + id + "'/>";
    build(elements + "<keyboard/>");
    for (const auto& control : panel.controls().all) {
        EXPECT_TRUE(control->getTitle().isNotEmpty());
        EXPECT_TRUE(control->getWantsKeyboardFocus());
        EXPECT_TRUE(dynamic_cast<juce::TooltipClient&>(*control).getTooltip().isNotEmpty());
    }
    EXPECT_EQ(panel.controls().knobs[0]->getTitle(), "Glide time");
    EXPECT_EQ(panel.controls().knobs[1]->getTextFromValue(1.0), "6.00 dB");
    auto* volume = panel.controls().knobs[1];
    volume->setValue(0.5);
    EXPECT_TRUE(volume->keyPressed(juce::KeyPress(juce::KeyPress::upKey)));
    EXPECT_GT(volume->getValue(), 0.5);
}

TEST(FilmStrips, ShowTheFrameOfTheirValue) {
    const std::pair<double, int> frames[] = {{0.0, 0},  {0.05, 0}, {0.15, 0},  {0.25, 1},
                                             {0.35, 2}, {0.95, 8}, {0.999, 8}, {1.0, 9}};
    for (const auto& [value, frame] : frames)
        EXPECT_EQ(CKnob::frameAt(value, 1.0, 10), frame) << value;

    const juce::ScopedJuceInitialiser_GUI framework;
    CKnob knob;
    for (const auto& [width, height] : {std::pair{40, 400}, std::pair{400, 40}}) {
        knob.setImage(strip(width, height));
        EXPECT_EQ(knob.frameCount(), 10);
        EXPECT_EQ(knob.getBounds(), juce::Rectangle<int>(0, 0, 40, 40));
    }
    knob.setImage(strip(50, 50));
    EXPECT_EQ(knob.frameCount(), 1);
    knob.setImage(strip(405, 40));
    EXPECT_EQ(knob.frameCount(), 10);
    knob.setSize(81, 40);
    knob.setFramesOfOwnSize(true);
    EXPECT_EQ(knob.frameCount(), 5);
}

TEST_F(PanelFromLayout, PicturesOfKnobsAndButtonsAreCutAsTheyAreMeant) {
    for (const bool horizontal : {false, true}) {
        build("<images><1>" + encodedStrip(10, 12, horizontal) +
              "</1></images><knob 1='1' width='30' height='30'/>");
        auto* knob = panel.controls().knobs[0];
        knob->setValue(0.45);
        const auto shown = picture(*knob);
        EXPECT_EQ(greyAt(shown, 0, 0), 60) << "frame 3 at the top left";
        EXPECT_EQ(greyAt(shown, 11, 11), 60);
        EXPECT_EQ(shown.getPixelAt(12, 12).getAlpha(), 0) << "in its natural size";
    }
    build("<images><1>" + encodedStrip(2, 20, true) +
          "</1></images><button 1='1' width='20' height='20' 3='1'/>");
    auto* button = panel.controls().buttons[0];
    EXPECT_EQ(greyAt(picture(*button), 10, 10), 0);
    button->setToggleState(true, juce::dontSendNotification);
    EXPECT_EQ(greyAt(picture(*button), 10, 10), 20);
}

TEST_F(PanelFromLayout, KeysAreToldApartByTheirRole) {
    build("<keyboard width='280' height='60' 4='60,83'/>"); // two octaves, 20 pixels a white key
    auto* keyboard = panel.controls().keyboards[0];
    KeyRoles roles;
    roles.fill(KeyRole::Playable);
    roles[62] = KeyRole::Silent;
    roles[64] = KeyRole::Keyswitch;
    roles[65] = KeyRole::ActiveKeyswitch;
    keyboard->setRoles(roles);
    const auto shown = picture(*keyboard);
    std::vector<juce::Colour> colours;
    for (int key = 0; key < 4; ++key)
        colours.push_back(shown.getPixelAt(key * 20 + 10, 50));
    for (std::size_t i = 0; i < colours.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const int distance = std::abs(colours[i].getRed() - colours[j].getRed()) +
                                 std::abs(colours[i].getBlue() - colours[j].getBlue());
            EXPECT_GT(distance, 60) << i << " and " << j;
        }
    EXPECT_EQ(shown.getPixelAt(4 * 20 + 10, 50), colours[0]) << "G plays like C";
}

} // namespace
} // namespace zarno

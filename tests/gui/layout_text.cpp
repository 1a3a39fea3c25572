// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Limits.h"
#include "gui/DefaultLayout.h"
#include "gui/LayoutReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace zarno {
namespace {

Layout read(const std::string& text) {
    auto result = readLayout(text);
    if (const auto* problem = std::get_if<LayoutProblem>(&result)) {
        ADD_FAILURE() << problem->text;
        return {};
    }
    return std::get<Layout>(std::move(result));
}

ControlDescription readOne(const std::string& element) {
    const Layout layout = read("<Player>" + element + "</Player>");
    EXPECT_EQ(layout.controls.size(), 1u) << element;
    return layout.controls.empty() ? ControlDescription{} : layout.controls.front();
}

LayoutProblem problemOf(const std::string& text) {
    const auto result = readLayout(text);
    const auto* problem = std::get_if<LayoutProblem>(&result);
    return problem != nullptr ? *problem : LayoutProblem{"none", "none"};
}

TEST(LayoutText, TheBuiltInLayoutIsExactlyTheOneThatLayoutToolsStartFrom) {
    EXPECT_EQ(std::strlen(defaultLayout), 934u);
    const Layout layout = read(defaultLayout);
    EXPECT_EQ(layout.width, 593);
    EXPECT_EQ(layout.height, 242);
    EXPECT_TRUE(layout.images.empty());
    ASSERT_EQ(layout.controls.size(), 10u);

    std::vector<int> ids;
    for (const auto& control : layout.controls)
        ids.push_back(control.id);
    EXPECT_EQ(ids, (std::vector<int>{1, 2, -1, 101, 102, 103, 104, 2, 3, 9}));
    EXPECT_EQ(layout.controls[1].bounds, juce::Rectangle<int>(149, 82, 317, 23));
    EXPECT_EQ(layout.controls[2].keys, std::make_pair(36, 95));
    using Colours = decltype(ControlDescription::colours);
    EXPECT_EQ(layout.controls[3].colours,
              (Colours{{0x1001312, juce::Colour(0x66dfc4c4)}, {0x1001311, juce::Colour(0x7fdadadc)}}));
    EXPECT_EQ(layout.controls[9].image, 0);
}

TEST(LayoutText, MissingAttributesTakeTheirDefaults) {
    const Layout empty = read("<PLAYER/>");
    EXPECT_EQ(empty.width, 600);
    EXPECT_EQ(empty.height, 250);

    const auto keyboard = readOne("<Keyboard/>");
    EXPECT_EQ(keyboard.kind, ControlKind::Keyboard);
    EXPECT_EQ(keyboard.bounds, juce::Rectangle<int>(0, 0, 50, 50));
    EXPECT_EQ(keyboard.keys, std::make_pair(0, 127));
    EXPECT_EQ(keyboard.id, -1);
    EXPECT_FALSE(keyboard.image.has_value());
    EXPECT_FALSE(keyboard.flag);
    EXPECT_EQ(keyboard.fontHeight, 12.0f);
    EXPECT_EQ(keyboard.extra, "-1");
    EXPECT_TRUE(keyboard.text.isEmpty() && keyboard.typeface.isEmpty() && keyboard.colours.empty());
}

TEST(LayoutText, AttributesAreReadWhateverTheirCaseAndUnusableOnesAreCut) {
    const auto label = readOne(
        R"(<LABEL X="-7" Y="8px" Width="99999999999" height="-3" 5="36" 6="Sans" 7="1e9" 8="A &amp; B" 9="q"/>)");
    EXPECT_EQ(label.bounds, juce::Rectangle<int>(-7, 8, limits::panelLength, 0));
    EXPECT_EQ(label.justification, 36);
    EXPECT_EQ(label.typeface, "Sans");
    EXPECT_EQ(label.fontHeight, 10000.0f);
    EXPECT_EQ(label.text, "A & B");
    EXPECT_EQ(label.extra, "q");
    EXPECT_TRUE(readOne(R"(<button 3="true"/>)").flag && readOne(R"(<button 3="1"/>)").flag);
    EXPECT_FALSE(readOne(R"(<button 3="no"/>)").flag);

    EXPECT_EQ(readOne(R"(<keyboard 4="-5,300"/>)").keys, std::make_pair(0, 127));
    EXPECT_EQ(readOne(R"(<keyboard 4="95,36"/>)").keys, std::make_pair(36, 95));
    EXPECT_EQ(readOne(R"(<keyboard 4="36"/>)").keys, std::make_pair(0, 127));
    EXPECT_EQ(read(R"(<player width="2000000000" height="-1"/>)").width, limits::panelLength);
}

TEST(LayoutText, EveryColourIsReadByItsNumberPlusAHundredAndNoOther) {
    const std::pair<const char*, int> colours[] = {
        {"16782198", 0x1001312}, {"16782197", 0x1001311}, {"16777572", 0x1000100}, {"16777573", 0x1000101},
        {"16777957", 0x1000281}, {"16797796", 0x1005000}, {"16797797", 0x1005001}, {"16797799", 0x1005003},
        {"16797798", 0x1005002}, {"16779876", 0x1000a00}, {"16780388", 0x1000c00}, {"16780644", 0x1000d00},
        {"16780900", 0x1000e00}, {"16780132", 0x1000b00}};
    ASSERT_EQ(std::size(layoutColours), std::size(colours));
    for (const auto& [attribute, id] : colours) {
        const auto control = readOne(std::string("<combo ") + attribute + "=\"8012abEF\"/>");
        ASSERT_EQ(control.colours.size(), 1u) << attribute;
        EXPECT_EQ(control.colours[0].first, id);
        EXPECT_EQ(control.colours[0].second, juce::Colour(0x8012abefu));
    }
    EXPECT_TRUE(readOne(R"(<combo 16777472="ffffffff" 16777473="ffffffff"/>)").colours.empty());
}

TEST(LayoutText, ImagesCarryTheirNumberAndLyingCountsAreSkipped) {
    const juce::MemoryBlock bytes("picture", 7);
    const std::string text = bytes.toBase64Encoding().toStdString();
    const std::string rest = text.substr(text.find('.'));
    const Layout layout = read("<player><images><12>" + text + "</12><12>2000000000" + rest + "</12><13>-7" +
                               rest + "</13><14>8" + rest + "</14><15>none</15><abc>\n" + text +
                               "\n</abc></images><unknown><label/></unknown></player>");
    ASSERT_EQ(layout.images.size(), 2u);
    EXPECT_EQ(layout.images[0].number, 12);
    EXPECT_EQ(layout.images[0].data, bytes);
    EXPECT_EQ(layout.images[1].number, 0);
    EXPECT_TRUE(layout.controls.empty());
}

TEST(LayoutText, TheTwoErrorsAreToldInTheirOwnWords) {
    const auto wrongRoot = problemOf("<Panel/>");
    EXPECT_EQ(wrongRoot.caption, "Zarno Sampler Player");
    EXPECT_EQ(wrongRoot.text, "No Player Node found");
    for (const char* broken : {"", "no markup", "< />", "<player><label x 1/></player>", "<player><label>",
                               "<player><label x=\"1"}) {
        juce::XmlDocument parser{juce::String(broken)};
        EXPECT_EQ(parser.getDocumentElement(), nullptr) << broken;
        const auto problem = problemOf(broken);
        EXPECT_EQ(problem.caption, "Layout XML Format Error") << broken;
        EXPECT_EQ(problem.text, parser.getLastParseError()) << broken;
    }
}

std::string repeated(const char* text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string nested(int levels) {
    return "<player>" + repeated("<a>", levels - 1) + repeated("</a>", levels - 1) + "</player>";
}

TEST(LayoutText, WhatWouldHurtTheParserIsAFormatErrorBeforeItIsParsed) {
    EXPECT_EQ(problemOf(nested(64)).caption, "none");
    EXPECT_EQ(readOne("<label" + repeated(" y='1'", 249) + " x='7'/>").bounds.getX(), 7);
    const std::string pictures(limits::layoutBytes, ' ');
    const std::string hostile[] = {
        nested(65),
        nested(1000000),
        "<player><a &>" + nested(1000000), // the parser goes on after an error
        "<player><x><></x>" + nested(1000000),
        "<player><x y>" + nested(1000000),
        "<!DOCTYPE player [<!ENTITY a \"&b;&b;\">]><player 8=\"&a;\"/>",
        "<player>&<a><a><a>;</player>", // an entity name that would be parsed as elements
        "<player 8=\"&#x",              // the parser would read on behind the text's end
        "<player 8=\"&#xD800;\"/>",
        "<player 8=\"R&B\" 9=\";\"/>",
        "<player><?x ?>text</player>", // the parser would not come back
        "<player/>" + pictures,
        "<player>" + std::string(3 * 20000, '<') + "</player>",
        "<player>" + repeated("<label/>", 20000) + "</player>",
        "<player><label" + repeated(" x='1'", 251) + "/></player>",
    };
    for (const auto& text : hostile)
        EXPECT_EQ(problemOf(text).caption, "Layout XML Format Error") << text.substr(0, 60);
}

TEST(LayoutText, ControlsBeyondTwoThousandAreLeftOut) {
    std::string text = "<player>";
    for (int i = 0; i < 2001; ++i)
        text += "<knob x=\"" + std::to_string(i) + "\"/>";
    const Layout layout = read(text + "</player>");
    ASSERT_EQ(layout.controls.size(), 2000u);
    EXPECT_EQ(layout.controls.back().bounds.getX(), 1999);
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/MakerError.h"
#include "tools/zarno/PanelSource.h"

#include <gtest/gtest.h>

namespace zarno {
namespace {

std::vector<std::uint8_t> bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

std::vector<std::uint8_t> readPicture(const std::string& file) {
    if (file == "absent.png") throw MakerError(file, "the file cannot be read");
    return bytesOf(file);
}

std::string compiled(const std::string& xml) {
    try {
        return layoutFromSource(xml, "panel.xml", readPicture);
    } catch (const MakerError& error) {
        return error.what();
    }
}

TEST(PanelSource, PicturesAreTextOfSixBitsACharacter) {
    EXPECT_EQ(pictureToText({}), "0.");
    EXPECT_EQ(pictureToText({0x01, 0x00}), "2.A..");
    EXPECT_EQ(pictureToText({0xFF, 0xFF, 0xFF}), "3.++++");
    for (std::size_t size = 0; size < 40; ++size) {
        std::vector<std::uint8_t> bytes;
        for (std::size_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::uint8_t>(i * 91 + size));
        EXPECT_EQ(pictureFromText(pictureToText(bytes)), bytes);
    }
    for (const char* other : {"", "3", "3.", "3.++++.", "3.+++?", "2.A.+", "9999999999999.", "-1."})
        EXPECT_FALSE(pictureFromText(other)) << other;
}

const std::string layout =
    "<?xml version=\"1.0\"?>\r\n<player width=\"593\" height=\"242\">\n"
    "<images>\n<1>" +
    pictureToText(bytesOf("\x89PNG strip")) +
    "</1>\n<7>no picture</7></images>\n<!-- <knob 2=\"101\"/> -->\n"
    "<label x='1' 8=\"A &amp; 2=&quot;B\" 5=\"17\" 2 = \"1\" 16777957=\"ff000000\"/>\n"
    "<knob 1=\"1\" 2=\"101\" 16782198=\"ff00ff00\" other=\"2\"/><knob 2=\"201\"/>\n"
    "<button 2=\"9\" 3=\"true\"/><combo 2=\"100\"/><KNOB 2=\"101\"/><knob 2=\"55\" 5=\"1\"\n/>\n"
    "<keyboard 4=\"36,95\" 3='1'></keyboard></player> ";

TEST(PanelSource, SaysAllOfALayoutByName) {
    const auto source = panelSourceOf(layout);
    ASSERT_TRUE(source);
    EXPECT_EQ(source->xml,
              "<?xml version=\"1.0\"?>\r\n<player width=\"593\" height=\"242\">\n<images>\n"
              "<picture number=\"1\" file=\"picture-1.png\"/>\n<7>no picture</7></images>\n<!-- <knob "
              "2=\"101\"/> -->\n"
              "<label x='1' text=\"A &amp; 2=&quot;B\" align=\"left bottom\" control = \"instrument title\" "
              "colour-text=\"ff000000\"/>\n"
              "<knob picture=\"picture-1.png\" control=\"attack\" colour-ring=\"ff00ff00\" other=\"2\"/>"
              "<knob control=\"controller 1\"/>\n"
              "<button control=\"stop all voices\" stays=\"true\"/><combo control=\"group trigger\"/><KNOB "
              "2=\"101\"/>"
              "<knob control=\"55\" 5=\"1\"\n/>\n<keyboard keys=\"36,95\" display='1'></keyboard></player> ");
    ASSERT_EQ(source->pictures.size(), 1u);
    EXPECT_EQ(source->pictures[0].bytes, bytesOf("\x89PNG strip"));
    for (const char* odd :
         {"", "<", "<player", "<knob 2", "<knob 2=", "<knob 2=\"", "<knob 2=\"1", "<!-- ", "<1>3.+</1>",
          "</1><1>0.</1><1>0.</1>", "<knob 2=\"007\" 5=\"64\"/>", "<knob 2=\"\" 1=\"x\"/>"}) {
        EXPECT_TRUE(panelSourceOf(odd)) << odd;
    }
    for (const char* ambiguous : {"<knob control=\"1\"/>", "<picture number=\"1\" file=\"a.png\"/>"})
        EXPECT_FALSE(panelSourceOf(ambiguous)) << ambiguous;
}

TEST(PanelSource, NamesPicturesByFileWithoutAListOfThem) {
    const std::string a = pictureToText(bytesOf("a.png")), b = pictureToText(bytesOf("b.png"));
    EXPECT_EQ(compiled("<player>\n<knob picture=\"a.png\" control=\"Attack\"/><knob picture=\"b.png\"/>"
                       "<button picture=\"a.png\"/>\n</player>"),
              "<player>\n<images>\n<1>" + a + "</1>\n<2>" + b +
                  "</2>\n</images>\n<knob 1=\"1\" 2=\"101\"/><knob 1=\"2\"/><button 1=\"1\"/>\n</player>");
    EXPECT_EQ(compiled("<player><images><picture number=\"1\" file=\"b.png\"/></images>"
                       "<knob picture=\"a.png\"/><knob picture=\"b.png\"/></player>"),
              "<player><images><1>" + b + "</1><2>" + a +
                  "</2>\n</images><knob 1=\"2\"/><knob 1=\"1\"/></player>");
}

TEST(PanelSource, TellsAllFaultsWithTheirPlaces) {
    const std::string told =
        compiled("<player>\n<knob control=\"atack\"/>\n <label align=\"left  up\"/>\n"
                 "<button picture=\"absent.png\"/>\n<picture number=\"x\" file=\"a\"/></player>");
    EXPECT_NE(told.find("panel.xml:2:7: control: there is no \"atack\" here; did you mean \"attack\"? There "
                        "are: glide time"),
              std::string::npos)
        << told;
    EXPECT_NE(told.find("panel.xml:3:9: align: there is no \"up\" here: left, right"), std::string::npos)
        << told;
    EXPECT_NE(told.find("panel.xml:4:9: absent.png: the file cannot be read"), std::string::npos) << told;
    EXPECT_NE(told.find("panel.xml:5:1: a picture is written as"), std::string::npos) << told;
    EXPECT_NE(told.find("panel.xml: 4 errors"), std::string::npos) << told;
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
// A layout text: read, made a panel of, and drawn.
#include "gui/CPlayerGUI.h"
#include "gui/DefaultLayout.h"
#include "tests/fuzz/run/Target.h"

namespace zarno::fuzz {
namespace {

void run(std::string_view input) {
    // Never shut down: at the end of a program its parts would go in any order.
    static const auto* framework = new juce::ScopedJuceInitialiser_GUI;
    require(framework != nullptr, "there is a framework");
    int messages = 0;
    CPlayerGUI panel({}, nullptr, [&](const juce::String&, const juce::String&) { ++messages; });
    panel.rebuild(input, {});
    const auto layout = readLayout(input);
    require(messages == (std::holds_alternative<Layout>(layout) ? 0 : 1),
            "one message when it is not a panel");
    panel.createComponentSnapshot({0, 0, 150, 100});
}

std::vector<std::string> seeds() {
    const std::string png = "67.AsDRFYtbVOtFXlA....DUMTE....P....B.I....fdCjUG....HURQAtFIZcvgAf....H........"
                            ".UQoDVjQpL...HURTUUD";
    return {defaultLayout,
            "<player width='200' height='100'><images><5>" + png +
                "</5><6>3.abcd</6></images><label 8='Name' 5='36' 7='20'/>"
                "<knob 2='1'/><knob 1='5' x='7' y='8' width='30' height='31'/><combo 2='4'/><button 8='Go' "
                "3='true' 9='x'/>"
                "<button 1='5'/><keyboard 3='1' 4='48,72'/><other/></player>",
            "<?xml version=\"1.0\"?><!-- c --><Player><![CDATA[x]]>&#65;&amp;<label "
            "16777957='ff00ff00'/></Player>"};
}

const Registered registered(
    {"layout_xml",
     2000,
     run,
     seeds,
     {"<player>",    "</player>", "</",           "/>",        "<a>",          "</a>",     "<!--",
      "-->",         "<?",        "?>",           "<![CDATA[", "]]>",          "\"",       "'",
      "=",           " 8=\"",     " x='1'",       "&",         "&amp;",        "&#65;",    "&#",
      ";",           "<!DOCTYPE", "\xEF\xBB\xBF", "\xC3",      "\xE4\xB8\xAD", "<images>", "<1>9.abc",
      "</1>",        "</images>", "<label",       "<knob",     "<combo",       "<button",  "<keyboard",
      "99999999999", "-1",        "1e9"}});

} // namespace
} // namespace zarno::fuzz

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"
#include "tools/check/CheckLayout.h"
#include "tools/check/InstrumentCheck.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/ModelJson.h"

#include <gmock/gmock.h>

namespace zarno {
namespace {

using namespace test;
using testing::HasSubstr;

// A sound instrument: two keyswitched groups, every number in order.
Json soundInstrument() {
    const auto zone = [](int low, int high) {
        return Json{{"sample", "a.wav"},
                    {"settings", {{"lowKey", low}, {"highKey", high}, {"loopMode", 2}, {"loopEnd", 90}}}};
    };
    const auto group = [&](const char* name, int keyswitch) {
        return Json{{"name", name},
                    {"settings", {{"trigger", "Note"}, {"keyswitchNote", keyswitch}}},
                    {"zones", {zone(36, 59), zone(60, 84)}}};
    };
    return {{"format", "zarno-instrument"},
            {"name", "Sound"},
            {"oddValues", true},
            {"groups", {group("Soft", 24), group("Loud", 25)}}};
}

class InstrumentCheck : public testing::Test {
  protected:
    Findings check(const Json& json, const PackOptions& options = {}) {
        folder.write("in/a.wav", WaveBuilder().format(1, 44100, 16).data(std::string(200, '\x40')).bytes());
        folder.write("in/instrument.json", json.dump());
        PackNotes notes;
        writeInstrumentFile(readInstrumentFolder(folder / "in", options, notes), folder / "in/out.zse");
        return checkInstrument(reportOn(folder / "in/out.zse"), [](double) {});
    }

    TempFolder folder;
};

TEST_F(InstrumentCheck, ASoundInstrumentIsLeftInPeace) {
    EXPECT_EQ(findingsToText(check(soundInstrument())), "");
    EXPECT_EQ(findingsToText(check(soundInstrument(), {.embed = true})), "");
}

TEST_F(InstrumentCheck, KeysOfARoundRobinThatTakeEachOthersTurns) {
    Json json = soundInstrument();
    Json& group = json["groups"][0];
    const Json low = group["zones"][0], high = group["zones"][1];
    group["settings"]["selectionMode"] = "Round Robin";
    group["zones"] = {low, low, high, high};
    EXPECT_EQ(findingsToText(check(json)), "warning: group 1 \"Soft\": its round robin counts for all keys "
                                           "together, and its zones are ordered by "
                                           "key, so playing several keys skips takes: give each key its own "
                                           "group, or order the zones by take\n");
    for (const Json& zones : {Json{low, high, low, high}, Json{low, low}, Json{low, high}}) {
        group["zones"] = zones;
        EXPECT_EQ(findingsToText(check(json)), "");
    }
}

struct Fault {
    const char* patch; // a JSON merge patch, or the settings of the second group's first zone
    const char* finding;
    bool isError = true;
};

// Each fault alone gives its one finding, under the place where it was made.
TEST_F(InstrumentCheck, EveryFaultIsFoundWithItsPlace) {
    const std::string zone = R"(group 2 "Loud", zone 1 "a.wav": )";
    const Fault inZone[] = {
        {R"({"lowKey": 70})", "keys 70..59: the first is above the last, so nothing reaches the zone"},
        {R"({"lowKey": 128, "highKey": 140})", "keys 128..140 do not exist"},
        {R"({"lowVelocity": 0, "highVelocity": 0})", "velocities 0..0 do not exist"},
        {R"({"rootKey": 200})", "root key 200 is no key", false},
        {R"({"endFrame": 100})", "end 100 lies behind the sample's last frame 99"},
        {R"({"startFrame": 95, "endFrame": 95})", "start 95 is not before end 95"},
        {R"({"loopEnd": 100})", "the loop ends at 100, behind the zone's end 99"},
        {R"({"loopStart": 3, "startFrame": 5})", "the loop starts at 3, before the zone's start 5"},
        {R"({"loopStart": 90, "loopEnd": 90})", "the loop's start 90 is not before its end 90"},
        {R"({"volume": 7})", "its loudest note peaks at +1.0 dB and is clipped"},
        {R"({"pan": 1.5})", "pan is 1.5: it must be from -1 to 1"},
        {R"({"attack": "0x7fc00000"})", "attack is 0x7fc00000: that is no number"},
    };
    for (const Fault& fault : inZone) {
        Json json = soundInstrument();
        json["groups"][1]["zones"][0]["settings"].update(Json::parse(fault.patch));
        const Findings findings = check(json);
        EXPECT_THAT(findingsToText(findings), HasSubstr(zone + fault.finding)) << fault.patch;
        EXPECT_EQ(countErrors(findings) > 0, fault.isError) << fault.patch;
    }

    const Fault elsewhere[] = {
        {R"({"name": ""})", "error: name: this is empty"},
        {R"({"title": ""})", "error: title: this is empty: no library lists the instrument"},
        {R"({"panel": "a.wav"})", "panel: the background is no PNG"},
        {R"({"groups": []})", "groups: there are none"},
        {R"({"layout": ""})", "layout, line 1: there is no element: no panel is shown"},
        {R"({"layout": "instrument.json"})", "layout, line 1: text stands before the first element"},
        {R"({"settings": {"polyphony": 0}})", "settings: polyphonyStored is 0: it must be from 1 to 1024"},
        {R"({"settings": {"quality": 9}})", "settings: quality is 9: there is no such choice"},
        {R"(g{"name": ""})", R"(group 2 "": the name is empty)", false},
        {R"(g{"zones": []})", "there are no zones", false},
        {R"(s{"keyswitchNote": 24})", R"(group 1 "Soft": its keyswitch 24 is also that of group 2 "Loud")"},
        {R"(s{"keyswitchNote": 60})", R"(group 1 "Soft": key 60, which sounds here, is the keyswitch of)",
         false},
        {R"(s{"keyswitchNote": 128})", "keyswitch 128 is no key: the group never sounds"},
        {R"(s{"trigger": "Channel", "channel": 16})", "channel 16 does not exist"},
        {R"(s{"trigger": "Controller", "controllerLow": 9, "controllerHigh": 8})", "no value lies between"},
        {R"(s{"trigger": "Program", "program": 128})", "program 128 does not exist"},
        {R"(s{"excluded": 1})", "it is excluded", false},
        {R"(s{"volume": -30})", "-30 dB or below is silence", false},
        {R"(s{"lowKey": 85})", "keys 36..59 lie outside the group's 85..127"},
        {R"(z{"sample": "b.wav", "settings": {"rootKey": 60, "endFrame": 9, "loopStart": 0, "loopEnd": 9}})",
         "b.wav, for 1 zone"},
    };
    for (const Fault& fault : elsewhere) {
        Json json = soundInstrument();
        Json* place = &json;
        std::string_view patch = fault.patch;
        Json& group = json["groups"][1];
        if (patch[0] == 'g') place = &group;
        if (patch[0] == 's') place = &group["settings"];
        if (patch[0] == 'z') place = &group["zones"][0];
        if (patch[0] != '{') patch.remove_prefix(1);
        place->update(Json::parse(patch));
        const Findings findings = check(json);
        EXPECT_THAT(findingsToText(findings), HasSubstr(fault.finding)) << fault.patch;
        EXPECT_EQ(countErrors(findings) > 0, fault.isError) << fault.patch << findingsToText(findings);
    }
}

// Each patch is for the settings of all zones of the group that is active at the start.
TEST_F(InstrumentCheck, HearsSilenceAndSides) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"volume": -144})", "error: sound: no note sounds"},
        {R"({"volume": -66})", "error: sound: no note sounds"},
        {R"({"volume": -59})", ""},
        {R"({"pan": -1})", "error: sound: it sounds on the left side only"},
        {R"({"pan": 1})", "error: sound: it sounds on the right side only"},
        {R"({"pan": 0.9})", ""},
        {R"(s{"trigger": "Controller", "controllerNumber": 9, "controllerLow": 1, "controllerHigh": 9})",
         "no note sounds"},
        {R"(s{"trigger": "Controller", "controllerNumber": 9, "controllerLow": 0, "controllerHigh": 9})", ""},
        {R"(s{"trigger": "Program", "program": 3})", "no note sounds"},
        {R"(s{"releaseTrigger": 1})", "no note sounds"},
        {R"(z{"volume": -100})", "error: sound: keys 36..59 are silent"},
    };
    for (const auto& [patch, finding] : cases) {
        Json json = soundInstrument();
        json["groups"].erase(1);
        std::string_view text = patch;
        auto& zones = json["groups"][0]["zones"];
        if (text[0] == 's')
            json["groups"][0]["settings"].update(Json::parse(text.substr(1)));
        else if (text[0] == 'z')
            zones[0]["settings"].update(Json::parse(text.substr(1)));
        else
            for (auto& zone : zones)
                zone["settings"].update(Json::parse(text));
        const std::string found = findingsToText(check(json));
        if (*finding == 0)
            EXPECT_EQ(found, "") << patch;
        else
            EXPECT_THAT(found, HasSubstr(finding)) << patch;
    }
}

TEST(LayoutCheck, EveryFaultIsFoundOnItsLine) {
    const Fault faults[] = {
        {"<player", "line 2: a name is missing: no panel is shown"},
        {"<panel/>", "line 2: the outermost element is <panel>, not <player>"},
        {"<player><label></player>", "line 2: </player> closes no open element"},
        {"<player><label x=5/></player>", "line 2: the value of x is not in quotes"},
        {"<!DOCTYPE a><player/>", "line 2: a document type is not allowed"},
        {"<player>\n<slider/>\n</player>", "line 3: there is no control <slider>", false},
        {"<player><label form='5'/></player>", "there is no attribute form", false},
        {"<player><label 16777472='ff000000'/></player>", "16777472 is no colour that a layout can set"},
        {"<player><label 16777957='red'/></player>", R"(16777957="red" is no colour of eight hex digits)"},
        {"<player><label 16782198='ffffffff'/></player>", "is a colour of knobs: a label does not show",
         false},
        {"<player><label x='left'/></player>", R"(x="left" is no whole number)"},
        {"<player><label x='600'/></player>", "the label lies outside the panel"},
        {"<player><label x='560'/></player>", "the label reaches out of the panel", false},
        {"<player><label width='0'/></player>", "the label has no size"},
        {"<player><knob/></player>", "a knob without an id (attribute 2) drives nothing"},
        {"<player><knob 2='99'/></player>", "a knob with id 99 drives nothing"},
        {"<player><combo 2='7'/></player>", "a combo with id 7 drives nothing"},
        {"<player><button 2='10'/></player>", "a button with id 10 drives nothing"},
        {"<player><knob 2='1' 1='4'/></player>", "there is no image 4"},
        {"<player><keyboard 4='36'/></player>", R"(4="36" is no range of keys)"},
        {"<player><images><a>1.A</a></images></player>", "an image's tag must be its number"},
        {"<player><images><1>abc</1></images></player>", "does not begin with its number of bytes"},
        {"<player><images><1>9.ABCD</1></images></player>", "image 1 has fewer bytes than it says"},
        {"<player><images><1>4.AAAAAA</1></images></player>", "image 1 is no PNG, JPEG or GIF"},
    };
    for (const Fault& fault : faults) {
        Findings findings;
        checkLayout(std::string("<?xml version=\"1.0\"?>\n") + fault.patch, findings);
        ASSERT_EQ(findings.size(), 1u) << fault.patch << '\n' << findingsToText(findings);
        EXPECT_THAT(findingsToText(findings), HasSubstr(fault.finding)) << fault.patch;
        EXPECT_EQ(countErrors(findings) > 0, fault.isError) << fault.patch;
    }
    Findings findings;
    checkLayout(R"(<PLAYER><!-- <x> --><images>
        <1>9.+Pl.XCw.+.A+</1></images><knob 2="201" 1="1" 8="&lt;a>"/></PLAYER>)",
                findings);
    for (const Finding& each : findings) // the bytes are no picture; the rest is as it should be
        EXPECT_THAT(each.what, HasSubstr("PNG"));
}

} // namespace
} // namespace zarno

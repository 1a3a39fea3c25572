// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Bytes.h"
#include "data/load/InstrumentLoader.h"
#include "engine/Fields.h"
#include "engine/ZInstrument.h"
#include "platform/File.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"
#include "tools/zarno/InstrumentReport.h"
#include "tools/zarno/InstrumentUnpacker.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/ModelJson.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace zarno {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PackUnpack : public testing::Test {
  protected:
    // The bytes of an instrument that went through the text form.
    std::string throughFolder(const std::string& bytes, UnpackOptions options = {}) {
        options.overwrite = true;
        const auto unpacked = unpackInstrument(folder.write("x.zse", bytes), folder / "folder", options);
        EXPECT_EQ(unpacked.incomplete, "");
        return pack("folder");
    }
    std::string pack(const std::string& name, PackOptions options = {}) {
        notes = {};
        writeInstrumentFile(readInstrumentFolder(folder / name, options, notes), folder / "out.zse");
        return folder.read("out.zse");
    }
    InstrumentFile packed(const std::string& name = "folder", PackOptions options = {}) {
        pack(name, options);
        const File file(folder / "out.zse");
        Bytes bytes(file);
        InstrumentFile parsed;
        EXPECT_EQ(parsed.parse(bytes), InstrumentFile::Refusal::None);
        EXPECT_FALSE(parsed.incomplete);
        return parsed;
    }
    Json json() { return Json::parse(folder.read("folder/instrument.json")); }
    // A folder with one wave and the given members.
    void writeFolder(Json members, const std::string& wave = rampWave(100)) {
        members["format"] = "zarno-instrument";
        folder.write("folder/a.wav", wave);
        folder.write("folder/instrument.json", members.dump());
    }
    static Json oneZone(Json settings) {
        return {{"groups", {{{"name", "G"}, {"zones", {{{"sample", "a.wav"}, {"settings", settings}}}}}}}};
    }
    std::string packError(const Json& members) {
        writeFolder(members);
        return packErrorOfFolder();
    }
    std::string packErrorOfFolder() {
        try {
            pack("folder");
        } catch (const MakerError& error) {
            return error.what();
        }
        return "no error";
    }

    TempFolder folder;
    PackNotes notes;
};

InstrumentBuilder embeddedInstrument(bool sixteenBit) {
    InstrumentBuilder file;
    file.storage = 1;
    file.settings.sixteenBit = file.settings.sixteenBitStored = sixteenBit;
    const int width = sixteenBit ? 2 : 4;
    const std::string mono(5 * width, 'm'), stereo(6 * width, '\xff');
    file.groups = {{"A", {}, {zone("one.wav", block(width, 44100, 1, 5, mono)), zone("one.wav")}, {}},
                   {"B", {}, {zone("x\\two.wav", block(width, -5, 2, 3, stereo)), zone("one.wav")}, {}},
                   {"C", {}, {zone("empty", block(width, 48000, 1, 0, ""))}, {}}};
    return file;
}

TEST_F(PackUnpack, GiveTheSameBytes) {
    for (const bool sixteenBit : {true, false}) {
        auto file = embeddedInstrument(sixteenBit);
        file.image = "GIF89a", file.layout = "<panel/>", file.licences = {"", "l"};
        EXPECT_EQ(throughFolder(file.bytes()), file.bytes());
        file.storage = 0;
        file.layout.clear();
        for (auto& group : file.groups)
            for (auto& zone : group.zones)
                zone.block.clear();
        EXPECT_EQ(throughFolder(file.bytes()), file.bytes());
        EXPECT_THAT(notes.missing, ElementsAre("one.wav", "x\\two.wav", "empty"));
    }
    InstrumentBuilder nothing;
    nothing.name = nothing.title = nothing.remark = "";
    EXPECT_EQ(throughFolder(nothing.bytes()), nothing.bytes());
}

TEST_F(PackUnpack, KeepWhatIsOdd) {
    auto file = embeddedInstrument(true);
    file.storage = 7;
    file.magic = std::string("Z\0\xff ", 4);
    file.version = -3;
    file.name = "\xfc not UTF-8", file.groups[0].name = std::string("\x01\x80", 2);
    file.image = "no picture", file.licences = {"\xff"};
    file.settings.polyphony = 5, file.settings.streaming = 0, file.settings.sixteenBit = 0;
    file.settings.volume = std::numeric_limits<float>::infinity(), file.settings.pan = -0.0f;
    file.settings.lfoRate = std::numeric_limits<float>::quiet_NaN();
    file.settings.unread[100] = 1;
    file.groups[2].record.unread[499] = 2;
    EXPECT_EQ(throughFolder(file.bytes() + std::string("behind\0it", 9)),
              file.bytes() + std::string("behind\0it", 9));
    EXPECT_EQ(json()["storage"], 7);

    InstrumentBuilder counts;
    counts.imageSize = -1, counts.licenceCount = -2, counts.groupCount = INT32_MIN;
    EXPECT_EQ(throughFolder(counts.bytes()), counts.bytes());
    counts = {};
    counts.groups = {{"G", {}, {}, -7}};
    EXPECT_EQ(throughFolder(counts.bytes()), counts.bytes());

    // A name that fills its limit, and one without a zero byte.
    InstrumentBuilder names;
    names.name = std::string(1024, 'n'), names.groups = {{"G", {}, {zone(std::string(1024, 's'))}, {}}};
    EXPECT_EQ(throughFolder(names.bytes()), names.bytes());
    std::string bytes = names.bytes();
    bytes[9 + 1024] = 'X';
    bytes[bytes.size() - sizeof(ZoneRecord) - 1] = 'Y';
    EXPECT_EQ(throughFolder(bytes), bytes);
}

TEST_F(PackUnpack, PanelsAreReadableWhereNothingIsLost) {
    InstrumentBuilder file;
    for (const char* layout : {"<player><images><1>3.ABCD</1></images><knob 1=\"1\" 2=\"101\"/></player>",
                               "<player><knob control=\"1\"/></player>"}) {
        file.layout = layout;
        EXPECT_EQ(throughFolder(file.bytes()), file.bytes());
    }
    EXPECT_EQ(json()["layout"], "layout.xml");
    EXPECT_THAT(folder.read("folder/panel.xml"),
                HasSubstr("<knob picture=\"picture-1.bin\" control=\"attack\"/>"));
}

TEST_F(PackUnpack, KeepBlocksThatNoWaveCanHold) {
    InstrumentBuilder file;
    file.storage = 1;
    const auto odd = [](const char* name, const std::string& block) {
        return InstrumentBuilder::Group{name, {}, {zone(name, block)}, {}};
    };
    std::string undefined = block(2, 44100, 1, 1, "xy");
    undefined.replace(12, 4, "\xde\xad\xbe\xef");
    file.groups = {
        odd("wide", block(4, 44100, 1, 3, "aabbcc")),     odd("six", block(2, 44100, 6, 1, "aabbccddeeff")),
        odd("none", block(2, 44100, 0, 9, "")),           odd("negative", block(2, 44100, 1, -9, "")),
        odd("minus two", block(3, 0, -2, INT64_MIN, "")), odd("undefined", undefined)};
    EXPECT_EQ(throughFolder(file.bytes()), file.bytes());
}

TEST_F(PackUnpack, FieldsOfARecordCoverItsBytes) {
    const auto covered = [](const RecordLayout& layout) {
        std::size_t end = 0;
        for (const auto& field : layout.fields) {
            EXPECT_EQ(field.offset, end) << field.name;
            end += field.type == FieldType::Frame ? 8 : 4;
        }
        return end == layout.unreadOffset;
    };
    EXPECT_TRUE(covered(layoutOf(InstrumentSettings())));
    EXPECT_TRUE(covered(layoutOf(GroupRecord())));
    EXPECT_TRUE(covered(layoutOf(ZoneRecord())));
}

TEST_F(PackUnpack, WhatAZoneLeavesOutTheWaveSays) {
    writeFolder(
        oneZone({{"volume", -3}}),
        WaveBuilder().format(1, 44100, 16).data(std::string(100, 'x')).sampler(48, 1, 10, 19).bytes());
    const ZoneRecord looped = packed().groups[0].zones[0].record;
    EXPECT_EQ(looped.rootKey, 48);
    EXPECT_EQ(looped.lowKey, 48);
    EXPECT_EQ(looped.highKey, 48);
    EXPECT_EQ(looped.lowVelocity, 0);
    EXPECT_EQ(looped.highVelocity, 127);
    EXPECT_EQ(looped.loopMode, 2);
    EXPECT_EQ(looped.loopStart, 10u);
    EXPECT_EQ(looped.loopEnd, 20u);
    EXPECT_EQ(looped.endFrame, 49u);
    EXPECT_EQ(looped.volume, -3.0f);

    writeFolder(
        oneZone({{"rootKey", 62}, {"highKey", 70}, {"loopMode", 1}, {"endFrame", 7}, {"release", 5.5}}));
    const ZoneRecord given = packed().groups[0].zones[0].record;
    EXPECT_EQ(given.lowKey, 62);
    EXPECT_EQ(given.highKey, 70);
    EXPECT_EQ(given.loopMode, 1);
    EXPECT_EQ(given.endFrame, 7u);
    EXPECT_EQ(given.release, 5.5f);
    writeFolder(oneZone(Json::object()));
    EXPECT_EQ(packed().groups[0].zones[0].record.rootKey, 60);
}

TEST_F(PackUnpack, SettingsMayBeTextsAndLiveFieldsBringTheirTwin) {
    Json members = {{"name", "N"},
                    {"settings",
                     {{"quality", "Low"},
                      {"lfoDepthSource", "After Touch"},
                      {"lfoShape", 3},
                      {"streaming", false},
                      {"polyphony", 9},
                      {"polyphonyStored", 8},
                      {"glideTime", "0x7fc00001"}}},
                    {"oddValues", true}};
    writeFolder(members);
    const InstrumentFile file = packed();
    EXPECT_EQ(file.settings.quality, 0);
    EXPECT_EQ(file.settings.lfoDepthSource, 2);
    EXPECT_EQ(file.settings.lfoShape, 3);
    EXPECT_EQ(file.settings.streaming + file.settings.streamingStored, 0);
    EXPECT_EQ(file.settings.polyphony, 9);
    EXPECT_EQ(file.settings.polyphonyStored, 8);
    EXPECT_EQ(file.settings.streamBufferFramesStored, 44100);
    EXPECT_TRUE(std::isnan(file.settings.glideTime));
    EXPECT_EQ(file.title.text(), "N") << "or no library would list it";
    EXPECT_EQ(file.version, 215);
}

TEST_F(PackUnpack, EmbeddingSoundsTheSame) {
    std::string data;
    for (int i = 0; i < 600; ++i)
        data += static_cast<char>(i * 7);
    for (const int bits : {8, 16, 24}) {
        for (const bool sixteenBit : {true, false}) {
            SCOPED_TRACE(std::to_string(bits) + (sixteenBit ? " to 16" : " to float"));
            Json members = oneZone({{"rootKey", 60}});
            members["settings"] = {{"sixteenBit", sixteenBit}, {"streaming", 0}};
            writeFolder(members, WaveBuilder().format(2, 32000, bits).data(data).bytes());
            ZInstrument external, embedded;
            pack("folder");
            std::filesystem::rename(folder / "out.zse", folder / "folder/external.zse");
            ASSERT_TRUE(loadInstrument(external, folder / "folder/external.zse"));
            pack("folder", {.embed = true});
            std::filesystem::remove(folder / "folder/a.wav");
            ASSERT_TRUE(loadInstrument(embedded, folder / "out.zse"));
            const ZZone& a = *external.groups()[0]->zones().at(0);
            const ZZone& b = *embedded.groups()[0]->zones().at(0);
            EXPECT_EQ(std::memcmp(&a.record, &b.record, sizeof a.record), 0);
            EXPECT_EQ(a.fileSampleRate, b.fileSampleRate);
            ASSERT_EQ(a.memory->bytes(), b.memory->bytes());
            const auto bytes = [](const ZZone& zone) {
                const SampleMemory& m = *zone.memory;
                return m.isSixteenBit() ? static_cast<const void*>(m.shorts()) : m.floats();
            };
            EXPECT_EQ(std::memcmp(bytes(a), bytes(b), a.memory->bytes()), 0);
        }
    }
}

TEST_F(PackUnpack, FloatWavesCanBeEmbedded) {
    Json members = oneZone(Json::object());
    members["storage"] = "embedded";
    for (const bool sixteenBit : {false, true}) {
        members["settings"] = {{"sixteenBit", sixteenBit}};
        writeFolder(members, WaveBuilder().format(1, 44100, 32, 4, 3).data(raw(0.5f, -7.0f)).bytes());
        const std::string bytes = pack("folder");
        const std::string frames = bytes.substr(bytes.size() - sizeof(ZoneRecord) - (sixteenBit ? 4 : 8));
        if (sixteenBit)
            EXPECT_EQ(frames.substr(0, 4), raw(std::int16_t{16384}, std::int16_t{-32768}));
        else
            EXPECT_EQ(frames.substr(0, 8), raw(0.5f, -7.0f));
    }
}

TEST_F(PackUnpack, ErrorsSayWhereAndWhy) {
    const auto settings = [](Json s) { return Json{{"settings", std::move(s)}}; };
    const struct {
        Json members;
        const char *where, *why;
    } cases[] = {
        {settings({{"volum", 1}}), "settings.volum", "no such field"},
        {settings({{"volume", "loud"}}), "settings.volume", "must be a number"},
        {settings({{"volume", 1e300}}), "settings.volume", "too large"},
        {settings({{"polyphony", 1.5}}), "settings.polyphony", "whole number"},
        {settings({{"polyphony", 3000000000}}), "settings.polyphony", "32 bits"},
        {settings({{"quality", "Best"}}), "settings.quality", "no \"Best\""},
        {settings({{"unread", "0"}}), "settings.unread", "hexadecimal"},
        {settings({{"unread", std::string(1010, '0')}}), "settings.unread", "more bytes"},
        {{{"nmae", "x"}}, "nmae", "no such field"},
        {{{"name", 5}}, "name", "must be a text"},
        {{{"name", std::string("a\0b", 3)}}, "name", "zero byte"},
        {{{"name", std::string(1025, 'x')}}, "name", "at most 1024"},
        {{{"magic", "ZSE"}}, "magic", "4 bytes"},
        {{{"storage", "inside"}}, "storage", "\"external\" or \"embedded\""},
        {{{"storage", 256}}, "storage", "from 0 to 255"},
        {{{"layout", "absent.xml"}}, "absent.xml", "cannot be read"},
        {{{"groups", {{{"zones", 1}}}}}, "groups[0].zones", "must be a list"},
        {{{"groups", {{{"zones", {{{"settings", Json::object()}}}}}}}},
         "groups[0].zones[0].sample",
         "missing"},
        {{{"groupCount", 3}}, "groupCount", "negative"},
        {oneZone({{"endFrame", -1}}), "groups[0].zones[0].settings.endFrame", "0 or more"},
        {{{"groups", {{{"zones", {{{"sample", "no.wav"}}}}}}}},
         "zones[0].settings.rootKey",
         "no wave \"no.wav\""},
        {{{"storage", "embedded"},
          {"samples", {{{"name", "a"}, {"raw", true}, {"file", "a.wav"}, {"channels", 1}, {"frames", 1}}}},
          {"groups",
           {{{"zones",
              {{{"sample", "a"},
                {"settings", {{"rootKey", 1}, {"endFrame", 1}, {"loopStart", 0}, {"loopEnd", 1}}}}}}}}}},
         "a.wav",
         "must have 2 bytes"},
    };
    for (const auto& c : cases) {
        const std::string error = packError(c.members);
        EXPECT_THAT(error, HasSubstr(c.where));
        EXPECT_THAT(error, HasSubstr(c.why));
    }
    folder.write("folder/instrument.json", "{\"format\": ");
    EXPECT_THAT(packErrorOfFolder(), HasSubstr("instrument.json:1:"));
    folder.write("folder/instrument.json", "{}");
    EXPECT_THAT(packErrorOfFolder(), HasSubstr("zarno-instrument"));
}

TEST_F(PackUnpack, AllFaultsAreToldInOrderWithLineAndColumn) {
    const std::string written = folder.write("folder/instrument.json", R"({ "format": "zarno-instrument",
  "settings": { "quality": "best", "\u0050an": 1,
    "pan": 2 }, "Title": "\u00fc\"}",
  "groups": [ { "zones": [] }, { "\u00fc": [[1], {}], "settings": { "highKey": 200, "lfoRate": 1 } } ] })");
    const std::string path = std::filesystem::path(written).make_preferred().string();
    EXPECT_EQ(packErrorOfFolder(),
              path +
                  ":2:17: settings.quality: there is no \"best\" here: it must be \"Low\", "
                  "\"Mid\" or \"High\"\n" +
                  path + ":2:36: settings.Pan: there is no such field; did you mean \"pan\"?\n" + path +
                  ":3:5: settings.pan: this is 2: it must be from -1 to 1\n" + path +
                  ":3:17: Title: there is no such field; did you mean \"title\"?\n" + path +
                  ":4:34: groups[1].\u00fc: there is no such field\n" + path +
                  ":4:69: groups[1].settings.highKey: this is 200: it must be from 0 to 127\n" + path +
                  ":4:85: groups[1].settings.lfoRate: there is no such field\n" + path + ": 7 errors");
}

TEST_F(PackUnpack, SamplesOf32BitsCannotBecome16) {
    Json members = oneZone(Json::object());
    members["storage"] = "embedded";
    members["settings"] = {{"sixteenBit", 1}};
    writeFolder(members, WaveBuilder().format(1, 44100, 32).data(raw(1, 2)).bytes());
    EXPECT_THAT(packErrorOfFolder(), HasSubstr("32-bit"));
    members.erase("settings");
    writeFolder(members, WaveBuilder().format(1, 44100, 32).data(raw(1, 2)).bytes());
    EXPECT_EQ(packed().settings.sixteenBitStored, 0) << "recordings with more bits keep them";
}

TEST_F(PackUnpack, ABrokenFolderReplacesNothing) {
    folder.write("out.zse", "precious");
    Json members = oneZone(Json::object());
    members["storage"] = "embedded";
    members["groups"][0]["name"] = std::string(2000, 'x');
    EXPECT_NE(packError(members), "no error");
    EXPECT_EQ(folder.read("out.zse"), "precious");
    EXPECT_FALSE(std::filesystem::exists(folder / "out.zse.part"));

    folder.write("folder/instrument.json", "{\"mine\": 1}");
    const std::string path = folder.write("x.zse", embeddedInstrument(true).bytes());
    EXPECT_THROW(unpackInstrument(path, folder / "folder", {}), MakerError);
    EXPECT_EQ(folder.read("folder/instrument.json"), "{\"mine\": 1}");
}

TEST_F(PackUnpack, AnIncompleteFileIsUnpackedAsFarAsItGoes) {
    const std::string whole = embeddedInstrument(true).bytes();
    for (std::size_t length = 700; length < whole.size(); length += 41) {
        const std::string path = folder.write("x.zse", whole.substr(0, length));
        std::filesystem::remove_all(folder / "folder");
        const auto notes = unpackInstrument(path, folder / "folder", {});
        ASSERT_THAT(notes.incomplete, HasSubstr("incomplete at offset")) << length;
        ASSERT_EQ(packErrorOfFolder(), "no error") << length;
    }
    EXPECT_THROW(unpackInstrument(folder.write("x.zse", "none"), folder / "f", {}), MakerError);
}

TEST_F(PackUnpack, ExternalSamplesAreCopiedWhenAsked) {
    folder.write("samples/a.wav", rampWave(5));
    folder.write("b.wav", rampWave(6));
    InstrumentBuilder file;
    file.groups = {{"G", {}, {zone("samples\\a.wav"), zone("..\\b.wav"), zone("c.wav")}, {}}};
    const std::string path = folder.write("inst/x.zse", file.bytes());
    folder.write("inst/samples/a.wav", rampWave(5));
    const auto notes = unpackInstrument(path, folder / "folder", {.copySamples = true});
    EXPECT_EQ(folder.read("folder/samples/a.wav"), rampWave(5));
    EXPECT_THAT(notes.notCopied, ElementsAre("..\\b.wav", "c.wav")) << "outside the folder, and absent";
    EXPECT_EQ(pack("folder"), file.bytes());
}

TEST_F(PackUnpack, SampleFilesHaveNamesThatEverySystemTakes) {
    InstrumentBuilder file;
    file.storage = 1;
    for (const char* name : {"C:\\x\\a?b*.wav", "../../etc/passwd", "", "\xfc.wav", "\xc3\xa4.b.wav"})
        file.groups.push_back({"G", {}, {zone(name, block(2, 44100, 1, 1, "xy"))}, {}});
    EXPECT_EQ(throughFolder(file.bytes()), file.bytes());
    std::vector<std::string> files;
    const Json all = json();
    for (const auto& sample : all["samples"])
        files.push_back(sample["file"]);
    EXPECT_THAT(files, ElementsAre("samples/0001 a_b_.wav", "samples/0002 passwd.wav", "samples/0003 .wav",
                                   "samples/0004 \xc3\xbc.wav", "samples/0005 \xc3\xa4.b.wav"));
}

TEST_F(PackUnpack, TheReportNamesEverything) {
    auto file = embeddedInstrument(true);
    file.groups[0].record.trigger = 2;
    file.groups[0].zones[0].record.attack = 12.5f;
    const std::string path = folder.write("x.zse", file.bytes() + "behind");
    const Json report = reportToJson(reportOn(path));
    EXPECT_EQ(report["settings"]["quality"], "High");
    EXPECT_EQ(report["groups"][0]["settings"]["trigger"], "Note");
    EXPECT_EQ(report["groups"][0]["zones"][0]["settings"]["attack"], 12.5);
    EXPECT_EQ(report["units"]["attack"], "ms");
    EXPECT_EQ(report["samples"][0]["zones"], 3);
    EXPECT_EQ(report["samples"][1]["frames"], 3);
    EXPECT_EQ(report["bytesBehind"], 6);
    EXPECT_TRUE(report["incomplete"].is_null());
    const std::string text = reportToText(reportOn(path));
    for (const char* part :
         {"attack 12.5 ms", "trigger Note", "44100 Hz", "6 bytes behind", "polyphony", "32 voices"})
        EXPECT_THAT(text, HasSubstr(part));

    folder.write("x.zse", file.bytes().substr(0, 2000));
    EXPECT_THAT(reportToText(reportOn(path)), HasSubstr("incomplete at offset"));
    folder.write("x.zse", "nothing");
    EXPECT_THROW(reportOn(path), MakerError);
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Bytes.h"
#include "data/load/InstrumentFile.h"
#include "data/load/InstrumentLoader.h"
#include "data/load/LicenceCheck.h"
#include "data/sound/ZWaveFile.h"
#include "engine/ZInstrument.h"
#include "platform/Paths.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBuilder.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace zarno {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Listener final : ZSEDelegate {
    bool loadProgress(float fraction, const char* group, const char* sample) override {
        fractions.push_back(fraction);
        names.push_back(std::string(group) + "/" + sample);
        return static_cast<int>(fractions.size()) != cancelAt;
    }
    void groupsChanged() override {}
    void reportMessage(const char* text, char* reply) override {
        searched.push_back(text);
        const std::string answer = answers.size() >= searched.size() ? answers[searched.size() - 1] : "";
        std::memcpy(reply, answer.data(), answer.size() + 1);
    }
    void settingsChanged() override { ++settingsChanges; }
    void requestLicenceText(char*) override {}

    std::vector<float> fractions;
    std::vector<std::string> names, searched, answers;
    int cancelAt = 0, settingsChanges = 0;
};

class InstrumentFiles : public testing::Test {
  protected:
    InstrumentFiles() {
        instrument.setDelegate(&listener);
        file.settings.sixteenBit = file.settings.sixteenBitStored = 1;
        file.settings.streaming = file.settings.streamingStored = 0;
    }
    // Two external zones in one group, the second one's wave is missing.
    void makeExternal() {
        folder.write("samples/a.wav", rampWave(10, 22050));
        file.groups = {{"Group", {}, {zone("samples/a.wav"), zone("samples\\b.wav")}, {}}};
    }
    void makeEmbedded(int channels = 1, int frames = 4, const std::string& data = "aabbccdd") {
        file.storage = 1;
        file.groups = {{"Group", {}, {zone("a", block(2, 22050, channels, frames, data)), zone("a")}, {}}};
    }
    bool load(const std::string& bytes) {
        return bool(result = loadInstrument(instrument, folder.write("x.zse", bytes)));
    }
    bool load() { return load(file.bytes()); }
    ZZone& loadedZone(std::size_t index, std::size_t group = 0) {
        return *instrument.groups().at(group)->zones().at(index);
    }

    TempFolder folder;
    InstrumentBuilder file;
    Listener listener;
    ZInstrument instrument;
    LoadResult result;
};

TEST_F(InstrumentFiles, FillTheHeader) {
    file.image = "PNG";
    file.layout = "<xml/>";
    file.licences = {"one", "", "three"};
    file.settings.volume = -6.5f;
    file.settings.unread[503] = 42;
    file.settings.polyphony = 1, file.settings.polyphonyStored = 7;
    file.settings.streamBufferFrames = 1, file.settings.streamBufferFramesStored = 5000;
    file.settings.sixteenBitStored = 0;
    ASSERT_TRUE(load()) << sentence(result.problem);
    const auto& texts = instrument.texts();
    EXPECT_EQ(texts.name + "|" + texts.title + "|" + texts.remark + "|" + texts.layout.value(),
              "Name|Title|Remark|<xml/>");
    EXPECT_EQ(texts.path, folder / "x.zse");
    EXPECT_THAT(texts.panelImage, ElementsAre('P', 'N', 'G'));
    EXPECT_THAT(texts.licences, ElementsAre("one", "", "three"));
    EXPECT_THAT(texts.incompleteReason, IsEmpty());
    const auto& settings = instrument.settings();
    EXPECT_EQ(settings.volume, -6.5f);
    EXPECT_EQ(settings.unread[503], 42);
    EXPECT_EQ(settings.polyphony, 7) << "the stored value comes into force";
    EXPECT_EQ(settings.streamBufferFrames, 5000);
    EXPECT_EQ(settings.sixteenBit, 0);
    EXPECT_EQ(instrument.pool().voices().size(), 7u);
    EXPECT_THAT(instrument.groups(), IsEmpty());
    EXPECT_EQ(instrument.currentGroupIndex(), -1);
    EXPECT_GE(listener.settingsChanges, 1);
}

TEST_F(InstrumentFiles, MagicAndVersion) {
    for (const char* magic : {"ZSE ", "Zxyz", "xSyz", "xyE?", "abc "}) {
        file.magic = magic;
        EXPECT_TRUE(load()) << magic;
    }
    for (const char* magic : {"abcd", " ESZ", "zse_"}) {
        file.magic = magic;
        EXPECT_FALSE(load()) << magic;
    }
    file.magic = "ZSE ";
    for (const int version : {215, 0, -1, INT32_MIN}) {
        file.version = version;
        EXPECT_TRUE(load()) << version;
    }
    file.version = 216;
    EXPECT_FALSE(load());
    EXPECT_EQ(instrument.texts().name, "Untitled") << "cleared";
    EXPECT_FALSE(peekHeader(folder / "x.zse"));
}

TEST_F(InstrumentFiles, AFileThatCannotBeOpenedLeavesTheInstrumentAlone) {
    makeExternal();
    ASSERT_TRUE(load());
    EXPECT_FALSE(loadInstrument(instrument, folder / "absent.zse"));
    EXPECT_EQ(instrument.texts().name, "Name");
    EXPECT_FALSE(load("none of all that"));
    EXPECT_EQ(instrument.texts().name, "Untitled");
    EXPECT_THAT(instrument.groups(), IsEmpty());
}

TEST_F(InstrumentFiles, ThePeekReadsTheTwoNames) {
    file.name = "Ä piano", file.title = "";
    folder.write("x.zse", file.bytes());
    ASSERT_TRUE(peekHeader(folder / "x.zse"));
    EXPECT_EQ(peekHeader(folder / "x.zse")->name, "Ä piano");
    EXPECT_EQ(peekHeader(folder / "x.zse")->title, "");
    EXPECT_FALSE(peekHeader(folder / "absent.zse"));
    folder.write("x.zse", file.bytes().substr(0, 9 + 4));
    EXPECT_EQ(peekHeader(folder / "x.zse")->name, "Ä p") << "cut, but an instrument";
}

TEST_F(InstrumentFiles, TextsEndAtTheirLimit) {
    file.name = std::string(1024, 'n');
    ASSERT_TRUE(load());
    EXPECT_EQ(instrument.texts().name, file.name);
    EXPECT_EQ(instrument.texts().title, "Title");
    // 1025 bytes without a zero byte: all are taken, the last one is not part of the text.
    auto bytes = file.bytes();
    bytes.replace(9 + 1024, 1, "X");
    ASSERT_TRUE(load(bytes));
    EXPECT_EQ(instrument.texts().name, file.name);
    EXPECT_EQ(instrument.texts().title, "Title");
    EXPECT_EQ(peekHeader(folder / "x.zse")->title, "Title");

    file.title = file.remark = file.name;
    file.groups = {{file.name, {}, {}, {}}};
    file.licences = {file.name, "short"};
    ASSERT_TRUE(load());
    EXPECT_EQ(instrument.texts().remark, file.remark);
    EXPECT_EQ(instrument.texts().licences, file.licences);
    EXPECT_EQ(instrument.groups()[0]->name, file.groups[0].name);
}

TEST_F(InstrumentFiles, ExternalZonesComeFromWaveFiles) {
    makeExternal();
    folder.write("samples/b.wav",
                 WaveBuilder().format(2, 48000, 24).data(std::string(60, 'x')).sampler(64, 1, 2, 5).bytes());
    file.groups[0].zones[1].record.loopEnd = 4;
    file.groups[0].record.volume = -3.0f;
    ASSERT_TRUE(load());
    EXPECT_THAT(listener.searched, IsEmpty());
    ZZone& a = loadedZone(0);
    EXPECT_TRUE(a.valid && a.mono && !a.streaming);
    EXPECT_EQ(a.lengthInFrames, 10u);
    EXPECT_EQ(a.fileSampleRate, 22050.0);
    EXPECT_EQ(a.memory->shorts()[9], 10);
    EXPECT_EQ(a.record.endFrame, 9u) << "clamped";
    EXPECT_EQ(a.group, instrument.groups()[0].get());
    ZZone& b = loadedZone(1);
    EXPECT_FALSE(b.mono);
    EXPECT_EQ(b.record.rootKey, 60) << "the record overrides the wave";
    EXPECT_EQ(b.record.loopEnd, 4u);
    EXPECT_EQ(b.record.loopMode, 0);
    EXPECT_EQ(a.group->record.volume, -3.0f);
    EXPECT_EQ(instrument.currentGroupIndex(), 0);
    EXPECT_EQ(ZWaveFile::openCount(), 0) << "in memory whole, no file stays open";
    EXPECT_THAT(listener.names, ElementsAre("Group/samples/a.wav", "Group/samples\\b.wav"));
    EXPECT_THAT(listener.fractions, ElementsAre(0.0f, 0.5f));
}

TEST_F(InstrumentFiles, MemoryHasTheWidthOfTheFlag) {
    makeExternal();
    file.settings.sixteenBitStored = 0;
    ASSERT_TRUE(load());
    ASSERT_FALSE(loadedZone(0).memory->isSixteenBit());
    EXPECT_EQ(loadedZone(0).memory->floats()[9], 10.0f / 32768.0f);
}

// Also when it is named in other ways: else a small file could have a large sample read any number of times.
TEST_F(InstrumentFiles, ZonesOfOneSampleShareItsMemory) {
    makeExternal();
    std::filesystem::create_hard_link(folder / "samples/a.wav", folder / "samples/b.wav");
    for (const char* name : {"samples\\a.wav", ".\\samples\\a.wav", ".\\.\\samples/.\\a.wav"})
        file.groups[0].zones.push_back(zone(name));
    for (const bool streaming : {false, true}) {
        file.settings.streamingStored = streaming;
        ASSERT_TRUE(load());
        for (std::size_t i = 1; i < 5; ++i) {
            EXPECT_EQ(loadedZone(0).memory, loadedZone(i).memory) << i;
            EXPECT_NE(loadedZone(0).sound, loadedZone(i).sound);
        }
    }
}

TEST_F(InstrumentFiles, EmbeddedZonesShareTheBlockOfTheFirst) {
    makeEmbedded();
    file.groups.push_back({"Second", {}, {zone("b", block(2, 44100, 2, 1, "xxyy")), zone("a")}, {}});
    ASSERT_TRUE(load());
    EXPECT_EQ(loadedZone(1).memory, loadedZone(0).memory);
    EXPECT_EQ(loadedZone(1, 1).memory, loadedZone(0).memory);
    EXPECT_EQ(loadedZone(0).memory->shorts()[3], 0x6464);
    EXPECT_EQ(loadedZone(0, 1).memory->shorts()[1], 0x7979);
    EXPECT_EQ(loadedZone(0, 1).memory->frames(), 1u);
    EXPECT_THAT(listener.fractions, ElementsAre(0.0f, 0.25f, 0.5f, 0.75f));
}

TEST_F(InstrumentFiles, ABlockOfTheOtherWidthIsSkippedByTheFlagAndSilent) {
    // The block says 4 bytes per sample, the flag 2: two samples' worth of data lie before the record.
    file.storage = 200;
    file.groups = {{"Group",
                    {},
                    {zone("a", block(4, 22050, 1, 2, "abcd")), zone("b", block(2, 22050, 1, 1, "xx"))},
                    {}}};
    ASSERT_TRUE(load());
    EXPECT_EQ(instrument.texts().incompleteReason, "");
    EXPECT_EQ(loadedZone(0).memory->frames(), 2u);
    EXPECT_EQ(loadedZone(0).memory->shorts()[0], 0);
    EXPECT_EQ(loadedZone(1).memory->shorts()[0], 0x7878);
}

TEST_F(InstrumentFiles, FloatsThatAreNoNumbersAreSilent) {
    const float inf = std::numeric_limits<float>::infinity(), nan = std::nanf("");
    file.settings.sixteenBitStored = 0;
    file.storage = 1;
    file.groups = {{"Group", {}, {zone("a", block(4, 44100, 1, 5, raw(nan, 1e38f, inf, -inf, -2.0f)))}, {}}};
    ASSERT_TRUE(load());
    const float* floats = loadedZone(0).memory->floats();
    EXPECT_THAT(std::vector<float>(floats, floats + 5), ElementsAre(0.0f, 1e38f, 0.0f, 0.0f, -2.0f));
}

TEST_F(InstrumentFiles, ImpossibleSampleRatesCountAsTheUsualOne) {
    for (const int rate : {0, -1, INT32_MIN}) {
        folder.write("samples/a.wav", rampWave(4, rate));
        makeEmbedded();
        file.groups[0].zones[0].block = block(2, rate, 1, 4, "aabbccdd");
        ASSERT_TRUE(load());
        EXPECT_EQ(loadedZone(0).fileSampleRate, 44100.0);
    }
}

TEST_F(InstrumentFiles, MissingSamplesAreAskedForUntilThreeSearchesFailed) {
    for (const char* name : {"1", "2", "3", "4", "5", "6"})
        file.groups.push_back({name, {}, {zone(name)}, {}});
    const std::string found = folder.write("found.wav", rampWave(3));
    listener.answers = {"", found, folder / "absent", found, "", found};
    ASSERT_TRUE(load());
    EXPECT_THAT(listener.searched,
                ElementsAre(folder / "1", folder / "2", folder / "3", folder / "4", folder / "5"));
    EXPECT_THAT(result.missing, ElementsAre(folder / "1", folder / "3", folder / "5", folder / "6"));
    EXPECT_THAT(instrument.groups()[0]->zones(), IsEmpty());
    EXPECT_EQ(loadedZone(0, 1).lengthInFrames, 3u);
    EXPECT_EQ(loadedZone(0, 1).record.endFrame, UINT64_MAX) << "points of a stand-in are not clamped";
    EXPECT_EQ(loadedZone(0, 3).record.rootKey, 60);

    instrument.setDelegate(nullptr);
    ASSERT_TRUE(load()) << "nobody to ask";
    EXPECT_EQ(result.missing.size(), 6u);
}

TEST_F(InstrumentFiles, SampleNamesFromBeforeUnicodeAreToldAsUtf8) {
    file.groups = {{"G", {}, {zone("Fl\xF6te.wav")}, {}}};
    ASSERT_TRUE(load());
    EXPECT_THAT(listener.searched, ElementsAre(folder / "Fl\xC3\xB6te.wav"));
    EXPECT_THAT(result.missing, ElementsAre(folder / "Fl\xC3\xB6te.wav"));
    folder.write("Fl\xC3\xB6te.wav", rampWave(3));
    ASSERT_TRUE(load());
    EXPECT_THAT(result.missing, IsEmpty());
}

TEST_F(InstrumentFiles, AnEmbeddedSampleOfUnknownWidthIsMissingAndTheFileStaysInStep) {
    file.storage = 1;
    file.groups = {{"Group",
                    {},
                    {zone("a", block(3, 44100, 1, 2, "abcd")), zone("b", block(2, 44100, 1, 1, "xx"))},
                    {}}};
    ASSERT_TRUE(load());
    ASSERT_EQ(instrument.groups()[0]->zones().size(), 1u);
    EXPECT_EQ(loadedZone(0).memory->shorts()[0], 0x7878);
    EXPECT_THAT(listener.searched, ElementsAre(folder / "a"));
}

TEST_F(InstrumentFiles, CancellingKeepsWhatWasRead) {
    makeEmbedded();
    file.groups.push_back(file.groups[0]);
    file.groups[1].zones[0].block = "";
    listener.cancelAt = 3;
    EXPECT_FALSE(load());
    ASSERT_EQ(instrument.groups().size(), 2u);
    EXPECT_EQ(instrument.groups()[0]->zones().size(), 2u);
    EXPECT_THAT(instrument.groups()[1]->zones(), IsEmpty());
    EXPECT_EQ(instrument.currentGroupIndex(), -1);
}

TEST_F(InstrumentFiles, TheLicenceCheckSeesTheTextsAndMayRefuse) {
    struct Check final : LicenceCheck {
        bool allows(const std::vector<std::string>& licences, const std::string& entered,
                    ZSEDelegate*) override {
            return licences.at(0) == entered;
        }
    } check;
    makeEmbedded();
    file.licences = {"key"};
    const std::string path = folder.write("x.zse", file.bytes());
    EXPECT_TRUE(loadInstrument(instrument, path, "key", check));
    EXPECT_FALSE(loadInstrument(instrument, path, "other", check));
    EXPECT_EQ(instrument.texts().name, "Name") << "the header stays";
    EXPECT_THAT(instrument.groups(), IsEmpty());
}

TEST_F(InstrumentFiles, NegativeCountsCountNothing) {
    makeEmbedded();
    file.imageSize = -5, file.licenceCount = INT32_MIN;
    ASSERT_TRUE(load());
    EXPECT_EQ(instrument.texts().incompleteReason, "");
    EXPECT_EQ(instrument.groups().size(), 1u);
    file.groups[0].zoneCount = -1;
    ASSERT_TRUE(load());
    EXPECT_THAT(instrument.groups()[0]->zones(), IsEmpty());
    file.groupCount = -1;
    ASSERT_TRUE(load());
    EXPECT_THAT(instrument.groups(), IsEmpty());
}

// Every way in which a file can end before the instrument does, by what is missing.
TEST_F(InstrumentFiles, ReadingStopsWhereTheFileEndsAndSaysWhere) {
    makeEmbedded();
    file.image = "PNG", file.layout = "<x/>", file.licences = {"lic"};
    const std::string whole = file.bytes(), head = file.head();
    const std::size_t group = head.size() + 4, zone1 = group + 6 + 580 + 4, data = zone1 + 2 + 24;
    const struct {
        std::size_t cut, offset, groups, zones;
        const char* what;
    } cases[] = {
        {2, 2, 0, 0, "the magic"},
        {6, 4, 0, 0, "the version"},
        {8, 8, 0, 0, "the storage flag"},
        {11, 11, 0, 0, "the name"},
        {14, 14, 0, 0, "the title"},
        {100, 20, 0, 0, "the instrument record"},
        {613, 613, 0, 0, "the remark"},
        {621, 619, 0, 0, "the image size"},
        {625, 623, 0, 0, "the panel image"},
        {628, 628, 0, 0, "the layout text"},
        {632, 631, 0, 0, "the licence count"},
        {637, 637, 0, 0, "licence text 1"},
        {head.size(), head.size(), 0, 0, "the group count"},
        {group + 3, group + 3, 0, 0, "the name of group 1"},
        {group + 100, group + 6, 0, 0, "the record of group 1"},
        {zone1 - 4, zone1 - 4, 1, 0, "the zone count of group 1"},
        {zone1 + 1, zone1 + 1, 1, 0, "the sample name of zone 1 of group 1"},
        {data - 1, zone1 + 2, 1, 0, "the sample header of \"a\""},
        {data + 7, data + 7, 1, 0, "the sample data of \"a\""},
        {data + 8 + 607, data + 8, 1, 0, "the record of zone 1 of group 1"},
        {whole.size() - 1, data + 8 + 608 + 2, 1, 1, "the record of zone 2 of group 1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(load(whole.substr(0, c.cut)));
        EXPECT_EQ(instrument.texts().incompleteReason, std::string("the file ends in ") + c.what);
        EXPECT_EQ(instrument.texts().incompleteAt, c.offset);
        EXPECT_EQ(instrument.texts().layout.has_value(), c.cut > 625) << "else as it starts out";
        ASSERT_EQ(instrument.groups().size(), c.groups);
        EXPECT_EQ(c.groups > 0 ? instrument.groups()[0]->zones().size() : 0, c.zones);
    }
    ASSERT_TRUE(load(whole));
    EXPECT_EQ(instrument.texts().incompleteReason, "");
}

TEST_F(InstrumentFiles, LyingSizesTakeNoMemory) {
    for (const auto& [channels, frames] : {std::pair<std::int32_t, std::int64_t>{1, INT64_MAX},
                                           {INT32_MAX, INT64_MAX},
                                           {2, INT64_MAX / 2},
                                           {1, 1'000'000'000'000}}) {
        makeEmbedded(channels);
        file.groups[0].zones[0].block = block(2, 44100, channels, frames, "aabbccdd");
        ASSERT_TRUE(load());
        EXPECT_THAT(instrument.texts().incompleteReason, HasSubstr("the sample data"));
    }
    makeEmbedded();
    file.groupCount = INT32_MAX;
    ASSERT_TRUE(load());
    EXPECT_EQ(instrument.groups().size(), 1u);
    file.groups[0].zoneCount = INT32_MAX;
    ASSERT_TRUE(load());
    EXPECT_EQ(loadedZone(1).memory->frames(), 4u) << "what was read plays";
    file.licenceCount = INT32_MAX;
    ASSERT_TRUE(load(file.head() + std::string(1 << 20, '\0')));
    EXPECT_THAT(instrument.texts().incompleteReason, HasSubstr("too many licence texts"));
    file.imageSize = INT32_MAX;
    ASSERT_TRUE(load());
    EXPECT_THAT(instrument.texts().incompleteReason, HasSubstr("the panel image"));
}

} // namespace
} // namespace zarno

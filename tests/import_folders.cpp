// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ImportedSound.h"
#include "tools/import/NoteNames.h"
#include "tools/zarno/InstrumentReport.h"
#include "tools/zarno/MakerError.h"

#include <gmock/gmock.h>
#include <sndfile.h>

namespace zarno {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

class ImportFolder : public testing::Test {
  protected:
    // "stem key root low-high velocities robin/count" of each zone, in order of file names.
    std::vector<std::string> zones(const std::vector<std::string>& files, const std::string& pattern = {}) {
        const TempFolder sounds;
        for (const std::string& file : files)
            sounds.write("in/" + file, wave.empty() ? levelWave(0.5, 100) : wave);
        remarks = ImportReport();
        std::vector<std::string> made;
        for (const ImportedZone& zone : readSoundFolder(sounds / "in", {pattern}, remarks).zones) {
            std::ostringstream line;
            line << zone.place << ' ' << zone.rootKey << ' ' << zone.keys.low << '-' << zone.keys.high << ' '
                 << zone.velocities.low << '-' << zone.velocities.high;
            if (zone.alternation.count > 1)
                line << ' ' << zone.alternation.position + 1 << '/' << zone.alternation.count;
            made.push_back(line.str());
        }
        return made;
    }
    TempFolder folder;
    ImportReport remarks;
    std::string wave;
};

TEST_F(ImportFolder, ReadsFileNames) {
    EXPECT_THAT(zones({"Piano C4.wav", "Piano_C#4.wav", "piano-eb5.flac", "notes.txt"}),
                ElementsAre("Piano C4.wav 60 0-60 0-127", "Piano_C#4.wav 61 61-68 0-127",
                            "piano-eb5.flac 75 69-127 0-127"));
    EXPECT_THAT(
        zones({"pno_C4_v1.wav", "pno_C4_v2.wav", "pno_C5_v1_rr1.wav", "pno_C5_v1_rr2.wav", "pno_Fs4.wav"}),
        ElementsAre("pno_C4_v1.wav 60 0-63 0-63", "pno_C4_v2.wav 60 0-63 64-127",
                    "pno_C5_v1_rr1.wav 72 70-127 0-127 1/2", "pno_C5_v1_rr2.wav 72 70-127 0-127 2/2",
                    "pno_Fs4.wav 66 64-69 0-127"));
    EXPECT_THAT(zones({"036-c.wav", "040.wav"}),
                ElementsAre("036-c.wav 36 0-38 0-127", "040.wav 40 39-127 0-127"));
    EXPECT_THAT(zones({"x 60 v64.wav", "x 60 v127.wav"}),
                ElementsAre("x 60 v127.wav 60 0-127 65-127", "x 60 v64.wav 60 0-127 0-64"));
    EXPECT_THAT(zones({"kick.wav", "snare 2.wav", "snare 1.wav", "hat pp.wav", "hat ff.wav"}),
                ElementsAre("hat ff.wav 36 36-36 64-127", "hat pp.wav 36 36-36 0-63",
                            "kick.wav 37 37-37 0-127", "snare 1.wav 38 38-38 0-127 1/2",
                            "snare 2.wav 38 38-38 0-127 2/2"));
    EXPECT_THAT(zones({"Loud/x_c3.wav", "Soft/x_c3.wav"}),
                ElementsAre("Loud/x_c3.wav 48 0-127 0-127", "Soft/x_c3.wav 48 0-127 0-127"));
    EXPECT_EQ(remarks.count("sounds on the same keys"), 2u);
}

TEST_F(ImportFolder, ReadsPatternsAndChunks) {
    EXPECT_THAT(zones({"a(1)-60-3.wav", "A(1)-62-3.wav", "a(1)-60-1.wav", "odd.wav"}, "a(1)-{key}-{robin}"),
                ElementsAre("A(1)-62-3.wav 62 62-127 0-127", "a(1)-60-1.wav 60 0-61 0-127 1/2",
                            "a(1)-60-3.wav 60 0-61 0-127 2/2"));
    EXPECT_EQ(remarks.count("file name that does not fit the pattern"), 1u);
    EXPECT_THAT(zones({"v90c2x.wav", "v127c2y.wav"}, "v{velocity}{key}{}"),
                ElementsAre("v127c2y.wav 36 0-127 91-127", "v90c2x.wav 36 0-127 0-90"));
    EXPECT_THROW(zones({"a.wav"}, "{keys}"), MakerError);
    EXPECT_THROW(zones({"a.txt"}), MakerError);
    const auto byte = [](int value) { return static_cast<char>(value); };
    const std::string inst{60, byte(-30), byte(-3), 40, 50, 10, 90, 0};
    wave = WaveBuilder()
               .format(1, 44100, 16)
               .chunk("inst", inst)
               .sampler(64, 1, 10, 49)
               .data(levelWave(0, 9))
               .bytes();
    EXPECT_THAT(zones({"anything.wav"}), ElementsAre("anything.wav 64 40-50 10-90"));
}

TEST_F(ImportFolder, NoteNames) {
    for (const auto& [text, key] :
         {std::pair("C4", 60), {"c#-1", 1}, {"Db4", 61}, {"b3", 59}, {"0", 0}, {"127", 127}})
        EXPECT_EQ(keyFromText(text), key) << text;
    for (const char* text : {"", "h3", "c", "c#", "c44", "4c", "c4x", "99999999999"})
        EXPECT_EQ(keyFromText(text), std::nullopt) << text;
    EXPECT_EQ(keyName(60) + keyName(1) + keyName(-1) + keyName(-255), "C4C#-1B-2A-23");
}

// A ramp through every kind of file, embedded and as wave files: what the file format holds arrives exactly.
TEST_F(ImportFolder, ConvertsSampleFormats) {
    const struct {
        const char* name;
        int format;
        double tolerance; // of full scale
    } kinds[] = {
        {"wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0},
        {"wavex24", SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, 0},
        {"wav8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 1.0 / 128},
        {"float", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 0},
        {"aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 0},
        {"flac24", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 0},
        {"ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 0.03},
    };
    constexpr int frames = 40000;
    std::vector<float> values;
    for (int i = 0; i < frames; ++i)
        for (const double phase : {0.0, 1.0})
            values.push_back(static_cast<float>(std::round(std::sin(i * 0.02 + phase) * 16000) / 32768));
    for (const auto& kind : kinds)
        for (const bool embed : {false, true}) {
            SCOPED_TRACE(std::string(kind.name) + (embed ? " embedded" : ""));
            const TempFolder sounds;
            folder.write("out.samples/x", "");
            SF_INFO info{0, 32000, 2, kind.format, 0, 0};
            SNDFILE* file = sf_open((sounds / "c4.wav").c_str(), SFM_WRITE, &info);
            ASSERT_TRUE(file);
            sf_writef_float(file, values.data(), frames);
            sf_close(file);
            ImportOptions options;
            options.embed = embed;
            auto source = readSoundFolder(sounds.path().string(), {}, remarks);
            source.zones.at(0).velocityTracking = 0;
            ImportedSound playing(source, folder, remarks, options);
            playing.engine.setSampleRate(32000);
            playing.noteOn(60);
            const auto out = playing.render(frames + 10);
            double worst = 0;
            for (std::size_t i = 2; i < frames; ++i)
                worst = std::max<double>({worst, std::abs(out.left[i] - values[2 * i]),
                                          std::abs(out.right[i] - values[2 * i + 1])});
            EXPECT_LE(worst, kind.tolerance);
            EXPECT_EQ(out.left[frames], 0.0f);
            const InstrumentReport report = reportOn(folder / "out.zse");
            EXPECT_EQ(embed, report.file.isEmbedded());
        }
}

TEST_F(ImportFolder, DrumkitsOfHydrogen) {
    folder.write("kit/a.wav", levelWave(0.5, 2000));
    folder.write("kit/b.wav", levelWave(0.25, 2000));
    folder.write("kit/drumkit.xml",
                 R"(<?xml version="1.0"?><drumkit_info><name>Kit &amp; Co</name><instrumentList>
        <instrument><name>Kick</name><volume>0.5</volume><layer><filename>a.wav</filename><min>0</min><max>0.5</max>
        <gain>1</gain></layer><layer><filename>b.wav</filename><min>0.5</min><max>1</max><gain>2</gain></layer>
        </instrument><instrument><name>Gone</name><filename>c.wav</filename></instrument>
        <instrument><name>Snare</name><isMuted>true</isMuted></instrument>
        <instrument><name>Hat</name><muteGroup>3</muteGroup><pan_L>0.5</pan_L><pan_R>1</pan_R>
        <filename>a.wav</filename></instrument></instrumentList></drumkit_info>)");
    const ImportedInstrument kit = readDrumkit(folder / "kit", remarks);
    EXPECT_EQ(kit.name, "Kit & Co");
    EXPECT_EQ(remarks.count("missing sample file") + 10 * remarks.count("muted instrument"), 11u);
    ImportedSound playing(kit, folder, remarks);
    EXPECT_THAT(playing.play("36v63 36v64 36v127 38v127 39v127 39v40"),
                testing::Pointwise(testing::FloatNear(5e-3f), {.125f, .1265f, .25f, 0.f, .25f, .08f}));

    // Layers that crowd together at the top, and one that is upside down.
    const auto layers = [&](std::initializer_list<const char*> ranges) {
        std::string xml = "<drumkit_info><instrumentList><instrument>";
        for (const char* range : ranges)
            xml += "<layer><filename>a.wav</filename>" + std::string(range) + "</layer>";
        folder.write("kit/drumkit.xml", xml + "</instrument></instrumentList></drumkit_info>");
        return readDrumkit(folder / "kit", remarks).zones;
    };
    const auto crowd = layers({"<min>0.992</min><max>0.992</max>", "<min>0.992</min>", "<min>1</min>"});
    EXPECT_EQ(crowd.at(0).velocities, (ImportedRange{126, 126}));
    EXPECT_TRUE(crowd.at(1).velocities.isEmpty());
    EXPECT_EQ(crowd.at(2).velocities, (ImportedRange{127, 127}));
    EXPECT_EQ(layers({"<min>0</min>", "<min>0.1</min><max>0</max>"}).at(0).velocities,
              (ImportedRange{0, 127}));

    folder.write("kit/drumkit.xml", "<drumkit_info><instrumentList>");
    EXPECT_THROW(readDrumkit(folder / "kit", remarks), MakerError);
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Limits.h"
#include "tests/support/ImportedSound.h"
#include "tools/zarno/MakerError.h"

#include <gmock/gmock.h>

namespace zarno {
namespace {

using namespace test;
using testing::ElementsAreArray;
using testing::FloatNear;
using testing::Pointwise;

class ImportSfz : public testing::Test {
  protected:
    ImportSfz() {
        for (const auto& [name, level] : {std::pair("a", 0.5), {"b", 0.25}, {"c", 0.125}, {"sub/d", 0.0625}})
            folder.write(std::string(name) + ".wav", levelWave(level));
        folder.write("sine.wav", sineWave(100, 100000)); // 441 Hz
    }
    ImportedSound sound(const std::string& text, ImportOptions options = {}) {
        remarks = ImportReport();
        auto source = readSfz(folder.write("x.sfz", text), remarks);
        EXPECT_EQ(source.volume, -10.0); // headroom for chords
        source.volume = 0.0;
        return ImportedSound(source, folder, remarks, std::move(options));
    }
    TempFolder folder;
    ImportReport remarks;
};

// Levels tell which regions sounded: a.wav is 0.5 all over, b.wav 0.25, c.wav 0.125, sub/d.wav 0.0625.
TEST_F(ImportSfz, OpcodesDoWhatTheySay) {
    const struct {
        const char *what, *text, *script;
        std::vector<float> levels;
    } cases[] = {
        {"ranges",
         "<region>sample=a.wav lokey=60 hikey=c#4 hivel=64 <region>sample=b.wav key=61 lovel=65",
         "59 60v64 60v65 61v64 61v65 62",
         {0, .5, 0, .5, .25, 0}},
        {"velocity tracking",
         "<global>amp_veltrack=100 <region>sample=a.wav",
         "60v127 60v64 60v32",
         {.5, .5f * .2540f, .5f * .0635f}},
        {"each zone's velocity tracking",
         "<region>sample=a.wav key=60 amp_veltrack=50 <region>sample=b.wav key=61 amp_veltrack=-100 "
         "<region>sample=c.wav key=62 amp_veltrack=100",
         "60v127 60v32 61v127 61v64 62v32",
         {.5, .5f * .5318f, 0, .25f * .7461f, .125f * .0635f}},
        {"levels add up",
         "<global>global_volume=-6.0206 <master>master_volume=-6.0206 <group>group_volume=6.0206 "
         "<region>sample=a.wav volume=-6.0206 amplitude=50 key=60 <region>sample=b.wav gain=6.0206 key=61",
         "60 61",
         {.0625, .25}},
        {"inheritance",
         "<global>volume=-60 <group>key=60 volume=0 <region>sample=a.wav <region>sample=b.wav lokey=61 "
         "hikey=61"
         "<group>key=62 sample=b.wav <region><master>volume=0 <group>key=63 sample=c.wav <region>",
         "60 61 62 63",
         {.5, .25, .00025f, .125}},
        {"definitions, includes, comments",
         "#define $K 60 #define $KK 61 #define $N d\n/* <region> sample=a.wav\n*/ // <region>sample=a.wav\n"
         "<control> default_path=sub\\ <region>sample=$N.wav key=$K\n#include \"in\\more.txt\"\n",
         "60 61 62",
         {.0625, .0625, .0625}},
        {"default path and offsets",
         "<control>default_path=sub/ note_offset=2 octave_offset=1 <region> sample=D.WAV key=60",
         "60 74",
         {0, .0625}},
        {"key tracking splits keys",
         "<region>sample=a.wav amp_keytrack=-6.0206 amp_keycenter=60",
         "60 61 59",
         {.5, .25, .999f}},
        {"round robin for each key",
         "<group>seq_length=2 key=60 <region>sample=a.wav seq_position=1 <region>sample=b.wav seq_position=2 "
         "<group>seq_length=3 key=61 <region>sample=a.wav seq_position=1 <region>sample=b.wav seq_position=2 "
         "<region>sample=c.wav seq_position=3",
         "60 61 60 61 61 60 61",
         {.5, .5, .25, .25, .125, .5, .5}},
        {"round robin in layers",
         "<group>seq_length=2 <region>sample=a.wav seq_position=1 <region>sample=b.wav seq_position=2 "
         "<region>sample=c.wav seq_position=1 <region>sample=sub/d.wav seq_position=2",
         "60 60 60",
         {.625, .3125, .625}},
        {"release",
         "<region>sample=a.wav <region>sample=b.wav trigger=release lokey=61",
         "60+ 60- 61+ 61- 61v1",
         {.5, 0, .5, .25, .75}},
        {"release that fades",
         "<region>sample=c.wav trigger=release amp_veltrack=100 rt_decay=24.0824",
         "60v127+ 60- 61v127+ wait500 61- 62v127+ wait2000 62-",
         {0, .114f, .114f, .140f, .140f, 0}},
        {"keyswitches",
         "<global>sw_lokey=24 sw_hikey=26 sw_default=25 lokey=48 <group>sw_last=24 "
         "<region>sample=a.wav <group>sw_last=25 <region>sample=b.wav <group>sw_last=c#0 "
         "<region>sample=c.wav <group>sw_last=26 seq_length=2 <region>sample=c.wav seq_position=1"
         "<region>sample=sub/d.wav seq_position=2 <group> <region>sample=sub/d.wav key=72",
         "60 24 60 72 60 26 60 60",
         {.25, 0, .5, .5625, .5, 0, .125, .0625}},
        {"controllers",
         "<region>sample=a.wav locc20=64 <region>sample=b.wav hicc20=63 locc21=0 hicc21=127",
         "60 cc20=64 60 cc20=63 60",
         {.25, .5, .25}},
        {"crossfades",
         "<region>sample=a.wav xfout_lovel=40 xfout_hivel=60 <region>sample=b.wav xfin_lovel=40 "
         "xfin_hivel=60 xfout_lokey=62 xfout_hikey=66 <region>sample=c.wav xfin_lokey=c4 "
         "xfin_hikey=66 lovel=50 <region>sample=sub/d.wav xfin_locc3=10 xfin_hicc3=90 lovel=50",
         "60v49 60v50 64v50 cc3=49 60v50 cc3=50 60v50",
         {.5385f, .5303f, .5670f, .5303f, .5928f}},
        {"what controllers are at the start",
         "<control>set_cc74=127 set_cc10=64 set_hdcc103=1 set_cc2=0 <global>amp_veltrack=0 pitch_keytrack=0 "
         "pan=-100 pan_oncc10=200 "
         "ampeg_sustain=0 "
         "ampeg_sustain_oncc103=100 lokey=48 <region>sample=a.wav key=60 locc74=1 <region>sample=b.wav "
         "key=60 "
         "locc74=1 hicc74=126 <region>sample=c.wav key=61 amplitude_oncc74=50 amplitude_cc2=100 "
         "amplitude_curvecc2=2 "
         "<region>sample=b.wav key=62 volume=-6.0206 gain_cc74=6.0206 <region>sample=a.wav key=63 "
         "xfin_locc74=0 "
         "xfin_hicc74=127 xf_cccurve=gain",
         "60 cc74=3 60 61 62 63",
         {.5, .5, .0625, .25, .5}},
        {"odd layers of a keyswitch",
         "<global>sw_default=24 sw_last=24 seq_length=2 <region>sample=b.wav key=60 <region>sample=c.wav "
         "key=60 "
         "seq_position=2 <region>sample=b.wav key=61 <region>sample=c.wav key=61 seq_position=2 "
         "<region>sample=b.wav "
         "key=62 <region>sample=c.wav key=62 seq_position=2 <region>sample=b.wav key=63 <region>sample=c.wav "
         "key=63 "
         "seq_position=2 <region>sample=b.wav key=64 <region>sample=c.wav key=64 seq_position=2 "
         "<region>sample=a.wav "
         "key=60",
         "60 60 61 61",
         {.25, .125, .125, .25}},
        {"alternatives on different keys",
         "<global>seq_length=2 <region>sample=a.wav lokey=60 hikey=64 <region>sample=b.wav lokey=60 hikey=62 "
         "seq_position=2 <region>sample=c.wav lokey=63 hikey=64 seq_position=2",
         "60 60 63 63 60",
         {.5, .25, .125, .5, .25}},
        {"exclusive groups",
         "<region>sample=a.wav key=60 group=1 <region>sample=b.wav key=61 group=2 off_by=1 "
         "<region>sample=c.wav key=62 <region>sample=sub/d.wav key=61 group=2 off_by=1",
         "62+ 61+ 60+",
         {.125, .4375, .6875}},
        {"monophonic group",
         "<group>group=3 polyphony=1 <region>sample=a.wav hikey=60 <region>sample=b.wav lokey=61",
         "60+ 61+",
         {.5, .25}},
        {"polyphony", "<global>polyphony=2 <region>sample=b.wav", "60+ 61+ 62+", {.25, .5, .5}},
        {"one-shot", "<region>sample=a.wav loop_mode=one_shot", "60+ 60-", {.5, .5}},
        {"end", "<region>sample=a.wav end=1100 <region>sample=b.wav end=-1", "60", {.124f}},
        {"left out",
         "<region>sample=a.wav hikey=-1 <region>sample=none.wav <region>sample=*sine <region>key=60 "
         "<region>sample=b.wav on_locc64=1 <region>sample=b.wav trigger=legato <region>sample=c.wav",
         "60",
         {.125}},
    };
    folder.write("in/more.txt",
                 "<region>sample=d.wav key=$KK <region>sample=d.wav key=62\n#include \"none\"");
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        std::string text = one.text;
        if (text.starts_with("<global>")) text.erase(0, 8);
        text = "<global>amp_veltrack=0 pitch_keytrack=0 " + text;
        auto playing = sound(text);
        const auto levels = playing.play(one.script);
        ASSERT_EQ(levels.size(), one.levels.size());
        for (std::size_t i = 0; i < levels.size(); ++i) // half a decibel for velocities
            EXPECT_NEAR(levels[i], one.levels[i], 2e-3 + 0.06 * one.levels[i]) << i;
    }
}

TEST_F(ImportSfz, PitchIsWithinOneCent) {
    const struct {
        const char* opcodes;
        int key;
        double cents; // from the recording's own pitch
    } cases[] = {
        {"", 60, 0},
        {"pitch_keycenter=c4", 72, 1200},
        {"pitch_keycenter=57 tune=-31", 60, 269},
        {"transpose=-30 tune=10", 60, -2990},
        {"pitch_keytrack=50", 67, 350},
        {"pitch_keytrack=0", 80, 0},
        {"pitch_keytrack=0 tune=45", 80, 45},
        {"pitch_keycenter=sample", 62, 170}, // the file says 60 and 30 cents sharp
        {"loop_mode=loop_continuous loop_start=1000 loop_end=1299", 60, 0},
        {"loop_mode=loop_continuous loop_start=1000 loop_end=1299", 79, 1900},
        {"loop_mode=loop_continuous loop_start=1000 loop_end=1299", 41, -1900},
        {"loop_mode=loop_continuous loop_start=1000 loop_end=1299 offset=1100", 60, 0},
    };
    std::string data;
    for (int i = 0; i < 100000; ++i)
        data += raw(static_cast<std::int16_t>(16384 * std::sin(2 * std::numbers::pi * i / 100)));
    const std::uint32_t none = 0, fraction = 0x4ccccccd; // 30 cents
    folder.write("sine.wav", WaveBuilder()
                                 .format(1, 44100, 16)
                                 .chunk("smpl", raw(none, none, none, 60u, fraction, none, none, none, none))
                                 .data(data)
                                 .bytes());
    for (const SampleStorage storage : {SampleStorage::Memory, SampleStorage::Stream})
        for (const auto& one : cases) {
            SCOPED_TRACE(one.opcodes + std::string(storage == SampleStorage::Stream ? " streamed" : ""));
            ImportOptions options;
            options.storage = storage;
            options.embed = one.key == 60;
            auto playing = sound("<region>sample=sine.wav " + std::string(one.opcodes), options);
            playing.noteOn(one.key);
            playing.render(2000);
            EXPECT_NEAR(centsBetween(hertzOf(playing.render(80000).left), 441.0), one.cents, 1.0);
        }
}

// A loop of whole cycles has no seam: the sine goes on with no step larger than its own steepest.
TEST_F(ImportSfz, LoopsDoNotClick) {
    for (const SampleStorage storage : {SampleStorage::Memory, SampleStorage::Stream}) {
        ImportOptions options;
        options.storage = storage;
        auto playing = sound("<region>sample=sine.wav loop_mode=loop_sustain loop_start=500 loop_end=799 "
                             "amp_veltrack=0",
                             options);
        EXPECT_EQ(remarks.count("loop_sustain"), 1u);
        EXPECT_EQ(remarks.count("short loop"), 1u);
        playing.noteOn(60);
        playing.render(100);
        const auto left = playing.render(200000).left;
        float steepest = 0, loudest = 0;
        for (std::size_t i = 1; i < left.size(); ++i) {
            steepest = std::max(steepest, std::abs(left[i] - left[i - 1]));
            loudest = std::max(loudest, left[i]);
        }
        EXPECT_NEAR(loudest, 0.5, 0.001);
        EXPECT_LT(steepest, 1.02f * 0.5f * 2 * std::numbers::pi_v<float> / 100);
    }
}

TEST_F(ImportSfz, EnvelopeAndPan) {
    auto playing = sound("<region>sample=a.wav amp_veltrack=0 pan=-25 ampeg_attack=0.2 ampeg_decay=0.4 "
                         "ampeg_sustain=25 ampeg_release=0.35 loop_mode=loop_continuous");
    playing.noteOn(60);
    const auto on = playing.render(66150);
    const auto peak = std::max_element(on.left.begin(), on.left.end());
    EXPECT_NEAR(static_cast<double>(peak - on.left.begin()), 0.2 * 44100, 200);
    EXPECT_NEAR(*peak, 0.5 * 1.176, 0.02); // equal power: 1.4 dB up, 2.1 dB down
    EXPECT_NEAR(on.right[8000] / on.left[8000], 0.668, 1e-3);
    EXPECT_NEAR(on.left.back(), 0.125 * 1.176, 2e-3);
    playing.noteOff(60);
    const auto off = playing.render(44100).left;
    const auto quiet =
        std::find_if(off.begin(), off.end(), [](float v) { return v < 0.5f * 1.176f * 0.05f; });
    EXPECT_NEAR(static_cast<double>(quiet - off.begin()), 0.0326 * 44100, 0.004 * 44100);
    EXPECT_EQ(off.back(), 0.0f);
}

TEST_F(ImportSfz, OffsetsStartWithinTheSample) {
    folder.write("ramp.wav", rampWave(30000));
    auto playing = sound("<region>sample=ramp.wav offset=20000 amp_veltrack=0 pitch_keytrack=0");
    playing.noteOn(60);
    const auto left = playing.render(12000).left; // an envelope without attack is there at the second frame
    EXPECT_NEAR(left[10] * 32768, 20011, 1);
    EXPECT_NEAR(left[9999] * 32768, 30000, 1);
    EXPECT_EQ(left[10000], 0.0f);
}

TEST_F(ImportSfz, RandomRegionsAreAsLikely) {
    auto playing = sound("<group>amp_veltrack=0 lokey=50 hikey=60<region>sample=a.wav hirand=0.5 <region>"
                         "sample=b.wav lorand=0.5 <group>amp_veltrack=0 lokey=61<region>sample=a.wav "
                         "hirand=0.333<region>sample=b.wav lorand=0.333 hirand=0.667<region>sample=c.wav "
                         "lorand=0.667");
    std::map<float, int> counts;
    std::string script;
    for (int i = 0; i < 600; ++i)
        script += i % 2 == 0 ? "55 " : "66 ";
    const auto levels = playing.play(script);
    for (std::size_t i = 0; i < levels.size(); ++i)
        ++counts[std::round(levels[i] * 8) / 8 + static_cast<float>(i % 2)];
    ASSERT_EQ(counts.size(), 5u);
    for (const auto& [level, count] : counts)
        EXPECT_NEAR(count, level < 1 ? 150 : 100, level < 1 ? 40 : 35) << level;
}

TEST_F(ImportSfz, ChancesKeepTheirShares) {
    auto playing =
        sound("<group>amp_veltrack=0 <region>sample=a.wav hirand=0.5 <region>sample=b.wav lorand=0.5 "
              "hirand=0.75 <region>sample=c.wav lorand=0.75");
    std::map<float, int> counts;
    std::string script;
    for (int i = 0; i < 600; ++i)
        script += "60 ";
    for (const float level : playing.play(script))
        ++counts[std::round(level * 8) / 8];
    EXPECT_NEAR(counts[.5f], 300, 50);
    EXPECT_NEAR(counts[.25f], 150, 45);
    EXPECT_NEAR(counts[.125f], 150, 45);
}

// Two microphones: a stroke is the same in both.
TEST_F(ImportSfz, RandomLayersStayTogether) {
    auto playing =
        sound("<global>amp_veltrack=0 <region>sample=a.wav hirand=0.5 <region>sample=b.wav lorand=0.5 "
              "<region>sample=c.wav hirand=0.5 <region>sample=sub/d.wav lorand=0.5");
    for (const float level : playing.play("60 60 60 60 60 60"))
        EXPECT_TRUE(std::abs(level - .625f) < 1e-3f || std::abs(level - .3125f) < 1e-3f) << level;
}

TEST_F(ImportSfz, EachKeyAlternatesForItself) {
    std::string text = "<global>amp_veltrack=0 pitch_keytrack=0 seq_length=2 ";
    for (int key = 30; key < 90; ++key)
        for (const char* region : {"<region>sample=a.wav", "<region>seq_position=2 sample=b.wav"})
            text += region + std::string(" key=") + std::to_string(key);
    auto playing = sound(text);
    EXPECT_THAT(playing.play("40 41 40 41 41 41 40"),
                Pointwise(FloatNear(1e-3f), {.5f, .5f, .25f, .25f, .5f, .25f, .5f}));
}

// What moves is taken at the controllers' start, and they are named; what is left out is counted.
TEST_F(ImportSfz, SaysWhatItCannotExpress) {
    sound(
        "<control>set_cc1=5 label_cc10=Pan set_cc40=1 <mystery>x=1 <group>ampeg_start=10 delay=0 "
        "pan_oncc10=100 "
        "sw_up=30\n<region>sample=a.wav bogus_word=1\n<region>sample=b.wav loop_mode=no_loop junk\n"
        "<region>sample=c.wav off_mode=fast eq1_gain_oncc3=5 trigger=first offset=99999999 <open\n"
        "<region>sample=gone.wav\n<region>sample=a.wav hicc40=0\n<region>sample=a.wav amplitude_oncc41=100");
    const std::pair<const char*, std::uint64_t> expected[] = {
        {"header <mystery>", 1},
        {"ampeg_start", 3},
        {"controller 10 (Pan)", 5},
        {"sw_up", 5},
        {"bogus_word", 1},
        {"controller 3", 1},
        {"controller 41", 1},
        {"trigger=first", 1},
        {"missing sample file", 1},
        {"header without its end", 1},
        {"text that is no opcode", 1},
        {"region for another value of controller 40", 1},
        {"region that is silent until controller 41 moves", 1},
        {"start behind the sample's end", 1}};
    for (const auto& [what, count] : expected)
        EXPECT_EQ(remarks.count(what), count) << what;
    EXPECT_EQ(remarks.remarks().size(), std::size(expected)) << remarks.remarksText(0);
    EXPECT_EQ(remarks.toJson()["remarks"][0]["first"], "x.sfz:3");
    EXPECT_THAT(remarks.remarksText(3), testing::HasSubstr("and 11 more kinds"));
}

TEST_F(ImportSfz, RefusesWhatIsNone) {
    const auto repeated = [](const char* text, int times) {
        std::string all;
        for (int i = 0; i < times; ++i)
            all += text;
        return all;
    };
    std::filesystem::resize_file(folder.write("much.txt", ""), limits::importedTextBytes);
    const std::pair<std::string, const char*> cases[] = {
        {"", "nothing in it"},
        {"<region>sample=none.wav", "nothing in it"},
        {"#include \"x.sfz\"", "include each other"},
        {repeated("x", 100000), "line is too long"},
        {"#define $A " + repeated("x", 6000) + "\n" + repeated("$A", 12), "line is too long"},
        {"#define $A " + repeated("x", 60000) + repeated("\n$A", 1200),
         "with all its definitions is too long"},
        {"#include \"much.txt\"", "with all it includes is too long"},
        {"<global>sample=a.wav pitch_keytrack=50" + repeated("\n<region>", 2049), "too many zones"},
        {"<global>sample=a.wav\n" + repeated("<region>\n", 262145), "too many regions"}};
    for (const auto& [text, why] : cases)
        try {
            sound(text);
            ADD_FAILURE() << why;
        } catch (const MakerError& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(why));
        }
}

} // namespace
} // namespace zarno

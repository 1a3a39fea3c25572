// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/SoundFontBuilder.h"
#include "tests/support/TempFolder.h"
#include "tools/import/SampleLibrary.h"
#include "tools/import/SoundFontImport.h"
#include "tools/import/SoundFontLibrary.h"
#include "tools/zarno/InstrumentReport.h"
#include "tools/zarno/MakerError.h"

#include <gmock/gmock.h>

#include <cmath>

namespace zarno {
namespace {

using namespace test;
using testing::HasSubstr;
using G = Generator;

class SoundFonts : public testing::Test {
  protected:
    ImportedInstrument import(const SoundFontBuilder& builder) {
        file = SoundFontFile::read(folder.write("a.sf2", builder.bytes()));
        report = {};
        return importPreset(file, file.presets.at(0), report);
    }
    // The only zone of an instrument whose only zone has these generators.
    ImportedZone zone(SoundFontBuilder::Zone generators, SoundFontBuilder::Zone preset = {}) {
        SoundFontBuilder builder;
        generators.emplace_back(G::SampleId, 0);
        preset.emplace_back(G::Instrument, 0);
        builder.instrument = {generators};
        builder.preset = {preset};
        const auto made = import(builder);
        EXPECT_EQ(made.zones.size(), 1u);
        return made.zones.empty() ? ImportedZone() : made.zones[0];
    }

    TempFolder folder;
    SoundFontFile file;
    ImportReport report;
};

TEST_F(SoundFonts, ABareZoneHasTheFormatsDefaults) {
    const auto bare = zone({});
    EXPECT_EQ(file.presets[0].bank, 3);
    EXPECT_EQ(file.presets[0].program, 12);
    EXPECT_EQ(fileNameOf(file.presets[0]), "003-012 Bell");
    EXPECT_EQ(bare.keys, (ImportedRange{0, 127}));
    EXPECT_EQ(bare.velocities, (ImportedRange{1, 127}));
    EXPECT_EQ(std::tuple(bare.rootKey, bare.tune, bare.keyTracking), std::tuple(60, 5.0, 100.0));
    EXPECT_NEAR(bare.volume, 0.0, 1e-9);
    EXPECT_NEAR(bare.pan, 0.0, 1e-9);
    EXPECT_EQ(bare.velocityTracking, 1.0);
    EXPECT_EQ(bare.loop, LoopMode::None);
    EXPECT_EQ(std::tuple(bare.envelope.attack, bare.envelope.decay), std::tuple(1.0, 0.0));
    EXPECT_TRUE(report.remarks().empty());
}

TEST_F(SoundFonts, GeneratorsOfPresetAndInstrumentAddUpWhereTheyMay) {
    const auto range = [](int low, int high) { return low | high << 8; };
    const auto both = zone({{G::KeyRange, range(40, 80)},
                            {G::VelocityRange, range(10, 100)},
                            {G::Attenuation, 100},
                            {G::Pan, -500},
                            {G::CoarseTune, -2},
                            {G::FineTune, 30},
                            {G::RootKey, 64},
                            {G::SampleModes, 1},
                            {G::LoopStartOffset, 7},
                            {G::ExclusiveClass, 3}},
                           {{G::KeyRange, range(60, 100)},
                            {G::VelocityRange, range(0, 64)},
                            {G::Attenuation, 50},
                            {G::FineTune, 10},
                            {G::RootKey, 20},
                            {G::ExclusiveClass, 9}});
    EXPECT_EQ(both.keys, (ImportedRange{60, 80}));
    EXPECT_EQ(both.velocities, (ImportedRange{10, 64}));
    EXPECT_NEAR(both.volume, -0.4 * 15.0 + 20 * std::log10(std::sqrt(2.0)),
                1e-9); // hard left is 3 dB louder there
    EXPECT_NEAR(both.pan, -1.0, 1e-9);
    EXPECT_EQ(both.tune, 5 - 200 + 40);
    EXPECT_EQ(both.rootKey, 64);
    EXPECT_EQ(both.choke, 3);
    EXPECT_EQ(std::tuple(both.loop, both.loopStart, both.loopEnd), std::tuple(LoopMode::Loop, 107u, 900u));

    // A second instrument zone takes from the one that speaks for all what it does not say itself.
    SoundFontBuilder builder;
    builder.instrument = {{{G::FineTune, 11}, {G::Attenuation, 100}}, {{G::FineTune, 22}, {G::SampleId, 0}}};
    const auto layered = import(builder);
    EXPECT_EQ(layered.zones.at(0).tune, 5 + 22);
    EXPECT_NEAR(layered.zones.at(0).volume, -4.0, 1e-9);
}

TEST_F(SoundFonts, FixedKeysVelocitiesAndEnvelopesBecomeWhatTheEngineHas) {
    const auto drum = zone({{G::ScaleTuning, 0}, {G::FineTune, 50}});
    EXPECT_EQ(std::tuple(drum.keyTracking, drum.tune),
              std::tuple(0.0, 50.0)); // the correction follows the scale
    const auto fixed = zone({{G::FixedKey, 72}, {G::FixedVelocity, 64}});
    EXPECT_EQ(std::tuple(fixed.keyTracking, fixed.tune, fixed.velocityTracking),
              std::tuple(0.0, 1205.0, 0.0));
    EXPECT_NEAR(fixed.volume, 40 * std::log10(64 / 127.0), 1e-9);

    const auto piano = zone({{G::VolEnvAttack, -1200}, {G::VolEnvDecay, 1200}, {G::VolEnvSustain, 1000}});
    EXPECT_NEAR(piano.envelope.attack, 500, 1e-6);
    EXPECT_NEAR(piano.envelope.sustain, -96, 1e-6);
    EXPECT_NEAR(piano.envelope.decay, 2000 * 8.6859 / 96, 0.2); // ms until 1/e, where 96 dB take two seconds

    const auto swept = zone({{G::ModEnvToPitch, 200}, {G::ModEnvSustain, 500}, {G::FilterCutoff, 8000}});
    EXPECT_EQ(swept.tune, 105);
    EXPECT_EQ(swept.shaping.contourToPitch, 200);
    EXPECT_NEAR(swept.shaping.cutoff, 830.6, 0.1); // 8,000 cents above 8.176 Hz

    // Louder than full level only as far as velocity takes away: 4 dB, down to velocity 100.
    SoundFontBuilder loud;
    loud.preset = {{{G::Attenuation, -100}, {G::Instrument, 0}}};
    const auto layers = import(loud).zones;
    ASSERT_EQ(layers.size(), 2u);
    EXPECT_EQ(layers[0].velocities, (ImportedRange{101, 127}));
    EXPECT_EQ(std::tuple(layers[0].volume, layers[0].velocityTracking), std::tuple(0.0, 0.0));
    EXPECT_NEAR(layers[1].volume, 4.0, 1e-9);

    SoundFontBuilder builder;
    builder.modulators = {{0, {0x0502, 48, 480, 0, 0}}, {0, {0x0081, 6, 50, 0, 0}}};
    EXPECT_EQ(import(builder).zones.at(0).velocityTracking, 0.5);
    EXPECT_EQ(report.count("modulator"), 1u);

    // So little takes so much of the level away that the velocity for it is no number.
    SoundFontBuilder steep;
    steep.modulators = {{0, {0x0502, 48, 1, 0, 0}}};
    steep.preset = {{{G::Attenuation, 1000}, {G::Instrument, 0}}};
    ASSERT_EQ(import(steep).zones.size(), 1u);
    EXPECT_EQ(import(steep).zones[0].velocities, (ImportedRange{1, 127}));
}

TEST_F(SoundFonts, TwoSidesOfOneRecordingBecomeOneStereoSample) {
    SoundFontBuilder builder;
    builder.samples = {{500, 10, 400, 1, SoundFontSample::Right}, {500, 10, 400, 0, SoundFontSample::Left}};
    builder.instrument = {{{G::Pan, 500}, {G::SampleId, 0}}, {{G::Pan, -500}, {G::SampleId, 1}}};
    const auto pair = import(builder);
    ASSERT_EQ(pair.zones.size(), 1u);
    EXPECT_NEAR(pair.zones[0].pan, 0, 1e-9);
    const auto& sample = pair.samples.at(pair.zones[0].sample);
    EXPECT_EQ(sample.format.channels, 2);
    std::int16_t frames[4] = {};
    EXPECT_EQ(sample.open()->read(frames, 2), 2u);
    EXPECT_THAT(frames, testing::ElementsAre(2000, 1000, 2001, 1001)); // left is the second sample
    std::vector<std::int16_t> whole(2 * 500);
    EXPECT_EQ(sample.open()->read(whole.data(), 500), 500u);

    builder.preset = {{{G::Instrument, 0}}, {{G::Instrument, 0}}, {{G::FineTune, 9}, {G::Instrument, 0}}};
    const auto layers = import(builder).zones;
    ASSERT_EQ(layers.size(), 3u) << "each layer is a pair of its own";
    EXPECT_EQ(layers[2].tune, 14);
    builder.preset.resize(1);

    builder.wide = true; // half a step of the 16-bit values
    const auto wide = import(builder).samples.at(0);
    float values[4] = {};
    EXPECT_EQ(wide.open()->read(values, 2), 2u);
    EXPECT_THAT(values,
                testing::ElementsAre(2000.5f / 32768, 1000.5f / 32768, 2001.5f / 32768, 1001.5f / 32768));
    EXPECT_EQ(wide.format.bits, 24);

    builder.wide = false;
    builder.compressed = builder.unpadded = true;
    const auto compressed = import(builder);
    ASSERT_EQ(compressed.zones.size(), 1u);
    EXPECT_EQ(std::pair(compressed.zones[0].loopStart, compressed.zones[0].loopEnd),
              std::pair(pair.zones[0].loopStart, pair.zones[0].loopEnd));
    const auto decoded = compressed.samples.at(0).open();
    std::vector<std::int16_t> all(2 * 500);
    EXPECT_EQ(decoded->read(all.data(), 600), 500u);
    EXPECT_EQ(all, whole);
    EXPECT_EQ(file.name, "Test");
    builder.compressed = false;

    builder.samples[0].points = 499; // not the same recording any more
    EXPECT_EQ(import(builder).zones.size(), 2u);
}

TEST(SampleLibrary, WritesEqualSamplesOnce) {
    SampleLibrary library("samples");
    ImportedSample sample;
    sample.name = "Bell";
    sample.identity = "3";
    SampleForm form;
    form.frames = 100;
    ShapedPart part;
    part.rate = 22050;
    const auto first = library.wave(sample, form, 2);
    EXPECT_TRUE(first.isNew);
    EXPECT_FALSE(library.wave(sample, form, 2).isNew);
    EXPECT_EQ(library.wave(sample, form, 2).name, first.name);
    sample.shape = std::make_shared<const ShapedPart>(part);
    const auto shaped = library.wave(sample, form, 2);
    EXPECT_TRUE(shaped.isNew);
    EXPECT_NE(shaped.name, first.name);
    EXPECT_FALSE(library.wave(sample, form, 2).isNew);
    form.loopStart = 5;
    EXPECT_TRUE(library.wave(sample, form, 2).isNew);
    sample.identity.clear();
    EXPECT_TRUE(library.wave(sample, form, 2).isNew);
}

TEST_F(SoundFonts, APresetBecomesAnInstrumentThatPlays) {
    SoundFontBuilder builder;
    builder.instrument = {{{G::SampleModes, 1}, {G::SampleId, 0}}};
    file = SoundFontFile::read(folder.write("a.sf2", builder.bytes()));
    ImportOptions options;
    options.out = folder / "library";
    options.embed = true;
    importAllPresets(file, options, report);
    const auto made = reportOn(folder / "library/003-012 Bell.zse");
    EXPECT_EQ(made.file.groups.at(0).zones.size(), 1u);
    EXPECT_TRUE(made.file.isEmbedded());
    EXPECT_FALSE(made.file.incomplete);
    EXPECT_EQ(made.file.settings.volume, -10.0f);
    options.embed = false;
    importAllPresets(file, options, report);
    const auto waves = reportOn(folder / "library/003-012 Bell.zse").samples;
    ASSERT_EQ(waves.size(), 1u);
    EXPECT_TRUE(waves[0].found);
    EXPECT_EQ(waves[0].name, "samples\\S0.wav");
    EXPECT_NO_THROW(findPreset(file, "3:12"));
    EXPECT_NO_THROW(findPreset(file, "Bell"));
    EXPECT_THROW(findPreset(file, "12"), MakerError); // of bank 0
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
// A SoundFont: each of its presets becomes an instrument.
#include "tests/fuzz/import/Imported.h"
#include "tests/support/SoundFontBuilder.h"
#include "tools/import/SoundFontLibrary.h"

namespace zarno::fuzz {
namespace {

void run(std::string_view input) {
    static const test::ScratchFolder folder("import_soundfont");
    importOrSayWhy(folder / "out", [&](ImportOptions options, ImportReport& report) {
        options.out = folder / "out";
        importAllPresets(SoundFontFile::read(folder.write("a.sf2", input)), options, report);
    });
}

std::vector<std::string> seeds() {
    using G = Generator;
    test::SoundFontBuilder bare, rich;
    bare.samples[0] = {60, 10, 40, 0, SoundFontSample::Mono};
    rich.samples = {{60, 10, 40, 1, SoundFontSample::Right}, {60, 10, 40, 0, SoundFontSample::Left}};
    rich.preset = {{{G::Attenuation, 5}}, {{G::KeyRange, 0x403c}, {G::FineTune, 9}, {G::Instrument, 0}}};
    rich.wide = true;
    rich.instrument = {{{G::Attenuation, 5},
                        {G::VolEnvHold, -3000},
                        {G::VolEnvSustain, 300},
                        {G::FilterCutoff, 6000},
                        {G::FilterResonance, 60},
                        {G::ModEnvToFilter, 900},
                        {G::ModEnvDecay, -3000},
                        {G::ModLfoToPitch, 20}},
                       {{G::SampleModes, 1}, {G::LoopStartOffset, 3}, {G::Pan, 500}, {G::SampleId, 0}},
                       {{G::SampleModes, 1}, {G::LoopStartOffset, 3}, {G::Pan, -500}, {G::SampleId, 1}}};
    rich.modulators = {{1, {0x0502, 48, 480, 0, 0}}};
    return {bare.bytes(), rich.bytes()};
}

const Registered registered({"import_soundfont",
                             2000,
                             run,
                             seeds,
                             {"RIFF", "sfbk", "LIST", "pdta", "phdr", "pbag", "pmod", "pgen", "inst", "ibag",
                              "imod", "igen", "shdr", "smpl", "sm24", "INAM"}});

} // namespace
} // namespace zarno::fuzz

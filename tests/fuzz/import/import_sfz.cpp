// SPDX-License-Identifier: GPL-3.0-or-later
// An SFZ file beside a sound: imported into an instrument that loads, or refused in words.
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WaveBuilder.h"
#include "tools/import/Importer.h"
#include "tools/import/Readers.h"
#include "tools/zarno/MakerError.h"

namespace zarno::fuzz {
namespace {

void run(std::string_view input) {
    static const test::ScratchFolder folder("import_sfz");
    static const std::string wave = folder.write("a.wav", test::rampWave(100));
    try {
        ImportReport report;
        const ImportedInstrument source = readSfz(folder.write("x.sfz", input), report);
        importInstrument(source, {.out = folder / "x.zse", .embed = true}, report);
    } catch (const MakerError& error) {
        require(error.what()[0] != 0, "an error says what is wrong");
        return;
    }
    ZInstrument instrument;
    require(bool(loadInstrument(instrument, folder / "x.zse")), "what was imported loads");
    require(instrument.texts().incompleteReason.empty(), "and is whole");
}

std::vector<std::string> seeds() {
    return {"// c\n<control> default_path= note_offset=1\n#define $K 60\n<global> ampeg_release=0.5\n<group> "
            "seq_length=2 "
            "lovel=1 hivel=64\n<region> sample=a.wav key=$K seq_position=1\n<region> sample=a.wav lokey=c4 "
            "hikey=d#5 "
            "pitch_keycenter=60 loop_mode=loop_continuous loop_start=10 loop_end=90\n",
            "<group> sw_lokey=24 sw_hikey=26 sw_last=24 trigger=release rt_decay=6\n<region> sample=a.wav "
            "volume=-6 pan=50 "
            "tune=-10 offset=5 group=1 off_by=1 locc64=64 hicc64=127 lorand=0.2 hirand=0.5\n#include "
            "\"x.sfz\"\n"};
}

const Registered registered({"import_sfz",
                             300,
                             run,
                             seeds,
                             {"<region>", "<group>", "<global>", "<master>", "<control>", "#define $A 1",
                              "$A", "#include \"x.sfz\"", "sample=a.wav", "key=", "1e308", "-1",
                              "99999999999", "=", "\n", "//", "/*", "*/"}});

} // namespace
} // namespace zarno::fuzz

// SPDX-License-Identifier: GPL-3.0-or-later
// An SFZ file beside a sound.
#include "tests/fuzz/import/Imported.h"
#include "tests/support/WaveBuilder.h"
#include "tools/import/Readers.h"

namespace zarno::fuzz {
namespace {

void run(std::string_view input) {
    static const test::ScratchFolder folder("import_sfz");
    static const std::string wave = folder.write("a.wav", test::rampWave(100));
    importOrSayWhy(folder / "out", [&](const ImportOptions& options, ImportReport& report) {
        importInstrument(readSfz(folder.write("x.sfz", input), report), options, report);
    });
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
                             500,
                             run,
                             seeds,
                             {"<region>",
                              "<group>",
                              "<global>",
                              "<master>",
                              "<control>",
                              "#define $A 1",
                              "$A",
                              "#include \"x.sfz\"",
                              "sample=a.wav",
                              "key=",
                              "1e308",
                              "-1",
                              "99999999999",
                              "=",
                              "\n",
                              "//",
                              "/*",
                              "*/",
                              "nan",
                              "seq_length=",
                              "lorand=",
                              "sw_last=",
                              "off_by=",
                              "group=",
                              "end=",
                              "offset=",
                              "locc1=",
                              "pitch_keytrack=",
                              "loop_mode=loop_continuous "}});

} // namespace
} // namespace zarno::fuzz

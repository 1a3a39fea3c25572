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
            "\"x.sfz\"\n",
            "<control> set_cc1=64 <curve> curve_index=8 v000=1 v064=0 <group> amplitude_oncc1=100 "
            "amplitude_curvecc1=8 "
            "xfin_locc1=9 xfin_hicc1=99 fil_type=hpf_2p cutoff=100 cutoff_oncc1=1200 eq1_gain=6 lfo01_freq=5 "
            "lfo01_pitch=20 "
            "fileg_depth=900 pitcheg_depth=99 ampeg_hold=0.1 ampeg_sustain=50 ampeg_decay=1 <region> "
            "sample=a.wav "
            "amp_velcurve_64=0.5 amp_veltrack=-50 xfin_lovel=9 xfin_hivel=99 xfout_lokey=60 xfout_hikey=70 "
            "width=-50 "
            "direction=reverse hirand=0.3 var01_oncc1=1 var01_pan=50\n"};
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
                              "amp_velcurve_1=",
                              "xfout_lovel=",
                              "volume_oncc1=",
                              "set_cc1=",
                              "loop_crossfade=",
                              "eq1_gain=",
                              "cutoff=",
                              "lfo01_freq=",
                              "loop_mode=loop_continuous "}});

} // namespace
} // namespace zarno::fuzz

// SPDX-License-Identifier: GPL-3.0-or-later
// The drumkit.xml of a folder with a sound.
#include "tests/fuzz/import/Imported.h"
#include "tests/support/WaveBuilder.h"
#include "tools/import/Readers.h"

namespace zarno::fuzz {
namespace {

void run(std::string_view input) {
    static const test::ScratchFolder folder("import_drumkit");
    static const std::string wave = folder.write("a.wav", test::rampWave(100));
    importOrSayWhy(folder / "out", [&](const ImportOptions& options, ImportReport& report) {
        folder.write("drumkit.xml", input);
        importInstrument(readDrumkit(folder.path().string(), report), options, report);
    });
}

std::vector<std::string> seeds() {
    const std::string layer = "<filename>a.wav</filename><gain>0.5</gain><pitch>-1</pitch></layer>";
    return {"<drumkit_info><name>K</name><instrumentList><instrument><filename>a.wav</filename><isMuted>false"
            "</isMuted><pan_L>1</pan_L><pan_R>0.5</pan_R><Attack>9</Attack><Decay>9</Decay><Sustain>0.5"
            "</Sustain><Release>99</Release><muteGroup>1</muteGroup></instrument></instrumentList>"
            "</drumkit_info>",
            "<drumkit_info><author>A</author><instrumentList><instrument><pan>-0.5</pan><sampleSelectionAlgo>"
            "ROUND_ROBIN</sampleSelectionAlgo><instrumentComponent><gain>2</gain><layer><min>0</min><max>0.5"
            "</max>" +
                layer + "<layer><min>0.4</min><max>1</max>" + layer + "<layer><max>1</max>" + layer +
                "</instrumentComponent></instrument></instrumentList></drumkit_info>"};
}

const Registered registered({"import_drumkit",
                             500,
                             run,
                             seeds,
                             {"<instrument>", "</instrument>", "<layer>", "</layer>", "<filename>", "<min>",
                              "</min>", "<max>", "</max>", "1e308", "nan", "-1", "1.0"}});

} // namespace
} // namespace zarno::fuzz

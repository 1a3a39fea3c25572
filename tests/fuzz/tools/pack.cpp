// SPDX-License-Identifier: GPL-3.0-or-later
// The text form of an instrument, packed: what comes out is a whole instrument, or a message for its maker.
#include "data/Bytes.h"
#include "data/load/InstrumentFile.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/WaveBuilder.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/ModelJson.h"

namespace zarno::fuzz {
namespace {

using namespace test;

const ScratchFolder& folder() {
    static const ScratchFolder made("pack");
    if (!std::filesystem::exists(made / "a.wav")) {
        made.write("a.wav", rampWave(100));
        made.write("f.wav", WaveBuilder().format(1, 44100, 32, 4, 3).data(raw(0.5f, -7.0f)).bytes());
        made.write("raw", "xy");
    }
    return made;
}

void run(std::string_view input) {
    folder().write("instrument.json", input);
    for (const bool embed : {false, true}) {
        try {
            PackNotes notes;
            const Model model = readInstrumentFolder(folder().path().string(), {.embed = embed}, notes);
            writeInstrumentFile(model, folder() / "out.zse");
        } catch (const MakerError& error) {
            require(error.what()[0] != 0, "an error says what is wrong");
            continue;
        }
        const std::string made = folder().read("out.zse");
        Bytes bytes(made.data(), made.size());
        InstrumentFile file;
        const auto refusal = file.parse(bytes);
        require(refusal != InstrumentFile::Refusal::None || !file.incomplete, "a packed instrument is whole");
    }
}

std::vector<std::string> seeds() {
    return {
        R"({"format": "zarno-instrument", "name": "N", "settings": {"quality": "Low", "polyphony": 9, "sixteenBit": true},
"groups": [{"name": "G", "settings": {"trigger": "Note"}, "zones": [{"sample": "a.wav", "settings": {"rootKey": 60, "endFrame": 7}}]}]})",
        R"({"format": "zarno-instrument", "storage": "embedded", "title": {"hex": "ff00", "terminated": false},
"samples": [{"name": "r", "file": "raw", "raw": true, "bytesPerSample": 2, "channels": 1, "frames": 1}, {"name": "w", "file": "a.wav"}],
"groups": [{"zones": [{"sample": "r", "settings": {"rootKey": 1, "endFrame": 1, "loopStart": 0, "loopEnd": 1}}, {"sample": "w"}]}]})",
        R"({"format": "zarno-instrument", "magic": "ZSE ", "version": -3, "storage": 7, "layout": "raw", "panel": "raw",
"licence": ["l"], "licenceCount": 1, "groupCount": -1, "imageSize": 2, "trailing": "00ff", "settings": {"volume": "0x7fc00001", "unread": "01"}})"};
}

const Registered registered({"pack",
                             1000,
                             run,
                             seeds,
                             {"\"zones\"", "\"sample\"", "\"settings\"", "\"groups\"", "\"frames\"",
                              "\"channels\"", "\"hex\"", "null", "1e308", "-1", "9223372036854775807",
                              "f.wav", "{", "}", "[", "]", "\\u0000"}});

} // namespace
} // namespace zarno::fuzz

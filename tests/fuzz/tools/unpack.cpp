// SPDX-License-Identifier: GPL-3.0-or-later
// An instrument file reported on, and taken apart: packing it again gives the same bytes.
#include "tests/fuzz/run/Instruments.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/ScratchFolder.h"
#include "tools/zarno/InstrumentReport.h"
#include "tools/zarno/InstrumentUnpacker.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/ModelJson.h"

namespace zarno::fuzz {
namespace {

void run(std::string_view input) {
    static const test::ScratchFolder folder("unpack");
    const std::string path = folder.write("x.zse", input);
    try {
        const InstrumentReport report = reportOn(path);
        reportToText(report);
        reportToJson(report).dump();
        const auto notes = unpackInstrument(path, folder / "folder", {.overwrite = true});
        PackNotes packed;
        writeInstrumentFile(readInstrumentFolder(folder / "folder", {}, packed), folder / "out.zse");
        require(!notes.incomplete.empty() || folder.read("out.zse") == input, "the same bytes come out");
    } catch (const MakerError&) { // refused, in words
    }
    std::filesystem::remove_all(folder / "folder");
}

const Registered registered({"unpack", 300, run, [] {
                                 auto all = instrumentSeeds();
                                 all.resize(5);
                                 return all;
                             }});

} // namespace
} // namespace zarno::fuzz

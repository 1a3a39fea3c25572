// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Commands.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/ModelJson.h"
#include "tools/zarno/PackReport.h"
#ifdef ZARNO_HAS_IMPORT
#include "tools/import/DecodedSound.h"
#endif

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zarno {
namespace {

struct Arguments {
    std::string folder, out;
    PackOptions options;
};

void pack(const Arguments& arguments) {
    PackNotes notes;
    const Model model = readInstrumentFolder(arguments.folder, arguments.options, notes);
    writeInstrumentFile(model, arguments.out);
    reportPacked(arguments.out, notes);
}

} // namespace

PackOptions packOptions() {
    PackOptions options;
#ifdef ZARNO_HAS_IMPORT
    options.decode = openDecoded;
#endif
    return options;
}

void addPackCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    arguments->options = packOptions();
    CLI::App* command = program.add_subcommand("pack", "Make an instrument file from a folder");
    command->add_option("FOLDER", arguments->folder, "Holds instrument.json and what it names")->required();
    command->add_option("OUT", arguments->out, "The instrument file to write (*.zse)")->required();
    command->add_flag("--embed", arguments->options.embed, "Put the waves into the instrument file");
    command->callback([arguments] { pack(*arguments); });
}

} // namespace zarno

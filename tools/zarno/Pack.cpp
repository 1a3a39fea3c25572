// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Commands.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/ModelJson.h"

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
    std::vector<std::string> missing;
    const Model model = readInstrumentFolder(arguments.folder, arguments.options, missing);
    writeInstrumentFile(model, arguments.out);
    for (const std::string& sample : missing)
        std::cerr << "zarno: warning: there is no wave \"" << sample << "\"\n";
}

} // namespace

void addPackCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command = program.add_subcommand("pack", "Make an instrument file from a folder");
    command->add_option("FOLDER", arguments->folder, "Holds instrument.json and what it names")->required();
    command->add_option("OUT", arguments->out, "The instrument file to write (*.zse)")->required();
    command->add_flag("--embed", arguments->options.embed, "Put the waves into the instrument file");
    command->callback([arguments] { pack(*arguments); });
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Commands.h"
#include "tools/zarno/InstrumentUnpacker.h"
#include "tools/zarno/MakerError.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zarno {
namespace {

struct Arguments {
    std::string file, folder;
    UnpackOptions options;
};

void unpack(const Arguments& arguments) {
    const UnpackNotes notes = unpackInstrument(arguments.file, arguments.folder, arguments.options);
    for (const std::string& sample : notes.notCopied)
        std::cerr << "zarno: warning: \"" << sample << "\" was not copied\n";
    // All that could be read is in the folder by now.
    if (!notes.incomplete.empty()) throw MakerError(arguments.file, notes.incomplete);
}

} // namespace

void addUnpackCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command = program.add_subcommand("unpack", "Write an instrument file as a folder to edit");
    command->add_option("FILE", arguments->file, "The instrument file")->required();
    command->add_option("FOLDER", arguments->folder, "Is made when it is not there")->required();
    command->add_flag("--copy-samples", arguments->options.copySamples,
                      "Copy the wave files of an instrument that names them");
    command->add_flag("--force", arguments->options.overwrite, "Replace an instrument that is there already");
    command->callback([arguments] { unpack(*arguments); });
}

} // namespace zarno

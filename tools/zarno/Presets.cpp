// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontFile.h"
#include "tools/import/SoundFontLibrary.h"
#include "tools/zarno/Commands.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zarno {

void addPresetsCommand(CLI::App& program) {
    auto file = std::make_shared<std::string>();
    CLI::App* command =
        program.add_subcommand("presets", "List the presets of a SoundFont: bank, program, name");
    command->add_option("FILE", *file, "The SoundFont (*.sf2)")->required();
    command->callback([file] { std::cout << listPresets(SoundFontFile::read(*file)); });
}

} // namespace zarno

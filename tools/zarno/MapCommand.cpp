// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/draw/InstrumentMap.h"
#include "tools/zarno/Commands.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/InstrumentReport.h"
#include "tools/zarno/MakerError.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <memory>

namespace zarno {
namespace {

struct Arguments {
    std::string file, out;
};

void map(const Arguments& arguments) {
    const auto picture = drawInstrumentMap(reportOn(arguments.file).file);
    std::ofstream out(filePath(arguments.out), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(picture.data()), static_cast<std::streamsize>(picture.size()));
    if (!out.flush()) throw MakerError(arguments.out, "cannot be written");
}

} // namespace

void addMapCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command = program.add_subcommand("map", "Draw where an instrument's zones lie");
    command->add_option("FILE", arguments->file, "The instrument file")->required();
    command->add_option("OUT", arguments->out, "The picture to write (*.png)")->required();
    command->callback([arguments] { map(*arguments); });
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Commands.h"
#include "tools/zarno/InstrumentReport.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zarno {
namespace {

struct Arguments {
    std::string file;
    bool json = false;
};

void info(const Arguments& arguments) {
    const InstrumentReport report = reportOn(arguments.file);
    if (arguments.json)
        std::cout << reportToJson(report).dump(1) << '\n';
    else
        std::cout << reportToText(report);
}

} // namespace

void addInfoCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command = program.add_subcommand("info", "Show what an instrument file holds");
    command->add_option("FILE", arguments->file, "The instrument file")->required();
    command->add_flag("--json", arguments->json, "For programs to read");
    command->callback([arguments] { info(*arguments); });
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/check/InstrumentCheck.h"
#include "tools/common/ProgressBar.h"
#include "tools/zarno/Commands.h"
#include "tools/zarno/MakerError.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zarno {
namespace {

struct Arguments {
    std::string file;
    bool json = false;
};

void check(const Arguments& arguments) {
    const InstrumentReport report = reportOn(arguments.file);
    Findings findings;
    {
        ProgressBar bar("Listening");
        findings = checkInstrument(report, [&](double fraction) { bar.show(fraction); });
    }
    if (arguments.json)
        std::cout << findingsToJson(findings).dump(1) << '\n';
    else if (findings.empty())
        std::cout << "nothing to complain about\n";
    else
        std::cout << findingsToText(findings);
    if (const auto errors = countErrors(findings))
        throw MakerError(arguments.file, std::to_string(errors) + (errors == 1 ? " error" : " errors"));
}

} // namespace

void addCheckCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command = program.add_subcommand("check", "Say what is wrong with an instrument, a line each");
    command->add_option("FILE", arguments->file, "The instrument file")->required();
    command->add_flag("--json", arguments->json, "For programs to read");
    command->callback([arguments] { check(*arguments); });
}

} // namespace zarno

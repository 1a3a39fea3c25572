// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Arguments.h"
#ifdef ZARNO_HAS_DRAWING
#include "tools/draw/Canvas.h"
#endif
#include "tools/zarno/Commands.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <iostream>

namespace {

enum ExitCode { success = 0, badInput = 1, badUsage = 2 };

constexpr void (*commands[])(CLI::App&) = {
    zarno::addBrandCommand,  zarno::addCheckCommand,   zarno::addFieldsCommand, zarno::addInfoCommand,
#ifdef ZARNO_HAS_DRAWING
    zarno::addMapCommand,
#endif
    zarno::addPackCommand,
#ifdef ZARNO_HAS_PANEL
    zarno::addPanelCommand,
#endif
#ifdef ZARNO_HAS_IMPORT
    zarno::addImportCommand, zarno::addPresetsCommand,
#endif
    zarno::addUnpackCommand, zarno::addWatchCommand,
#ifdef ZARNO_HAS_RENDER
    zarno::addRenderCommand,
#endif
};

} // namespace

int main(int argc, char** argv) {
    CLI::App program("Makes, shows and plays instruments of Zarno Sampler Player.", "zarno");
    program.require_subcommand(1);
    program.set_version_flag("--version", "zarno " ZARNO_VERSION);
    program.allow_windows_style_options(false); // a path may begin with a slash on Wine
    for (const auto add : commands)
        add(program);

#ifdef ZARNO_HAS_DRAWING
    const zarno::FontsInUse fonts;
#endif
    auto arguments = zarno::utf8Arguments(argc, argv);
    arguments.erase(arguments.begin());
    std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
    try {
        program.parse(arguments);
    } catch (const CLI::RuntimeError& failed) { // a command that has said why
        return failed.get_exit_code();
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? success : badUsage;
    } catch (const std::exception& error) {
        std::cerr << "zarno: " << error.what() << '\n';
        return badInput;
    }
    return success;
}

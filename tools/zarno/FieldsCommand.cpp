// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Commands.h"
#include "tools/zarno/FieldReference.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace zarno {

void addFieldsCommand(CLI::App& program) {
    program.add_subcommand("fields", "List every setting of instrument.json with its values and meaning")
        ->callback([] { std::cout << fieldReference(); });
}

} // namespace zarno

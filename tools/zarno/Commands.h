// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

// Each adds its sub-command to the program. Commands throw MakerError when the input is bad.
namespace zarno {

void addBrandCommand(CLI::App& program);
void addCheckCommand(CLI::App& program);
void addFieldsCommand(CLI::App& program);
void addImportCommand(CLI::App& program);
void addInfoCommand(CLI::App& program);
void addMapCommand(CLI::App& program);
void addPackCommand(CLI::App& program);
void addPanelCommand(CLI::App& program);
void addPresetsCommand(CLI::App& program);
void addUnpackCommand(CLI::App& program);
void addRenderCommand(CLI::App& program);
void addWatchCommand(CLI::App& program);

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Branding.h"
#include "tools/zarno/Commands.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zarno {
namespace {

void print(const ModuleIdentity& identity) {
    std::cout << "id:     " << uniqueIdAsText(identity.uniqueId) << "\ntitle:  " << identity.packTitle
              << "\nvendor: " << identity.vendor << '\n';
}

void brand(PackFolder pack) {
    if (pack.folder.empty()) {
        if (!pack.instruments.empty()) throw MakerError("--instruments", "this needs --pack");
        for (const std::string& module : pack.modules)
            print(brandModule(module, pack.brand));
        return;
    }
    if (pack.name.empty()) pack.name = pack.brand.title.value_or("");
    if (pack.name.empty()) throw MakerError("--name", "a pack needs a name, or --title");
    makePackFolder(pack);
    std::cout << pack.folder << '\n';
}

} // namespace

void addBrandCommand(CLI::App& program) {
    auto pack = std::make_shared<PackFolder>();
    CLI::App* command = program.add_subcommand(
        "brand", "Give a copy of the plug-in module a pack's identity, or make a whole pack to ship");
    command->add_option("MODULE", pack->modules, "Modules: a .dll, or a .so, which gets a file beside it")
        ->required();
    command->add_option("--id", pack->brand.id, "The four characters by which hosts tell plug-ins apart");
    command->add_option("--title", pack->brand.title, "The pack's title, at most 16 bytes");
    command->add_option("--vendor", pack->brand.vendor, "The vendor's name, at most 16 bytes");
    command->add_option(
        "--pack", pack->folder,
        "Leave the modules alone, and make this folder of branded copies, their library and checksums");
    command->add_option("--name", pack->name, "What the copies are called; the title when it is not given");
    command->add_option(
        "--instruments", pack->instruments,
        "What goes into the library: instrument files, or folders of them with their samples");
    command->callback([pack] { brand(*pack); });
}

} // namespace zarno

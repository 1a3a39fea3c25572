// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"
#include "shell/ModuleIdentity.h"
#include "tools/zarno/Commands.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <CLI/CLI.hpp>

#include <array>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

namespace zarno {
namespace {

struct Arguments {
    std::string module;
    std::optional<std::string> id, title, vendor;
};

std::string readStart(const std::string& path, std::size_t most) {
    File file(path);
    std::string bytes(most, '\0');
    bytes.resize(file.isOpen() ? file.read(bytes.data(), most) : 0);
    return bytes;
}

std::string checkedText(const std::string& text, const char* what) {
    if (text.size() > identityField::textBytes)
        throw MakerError(what, "\"" + text + "\" has more than 16 bytes");
    return text;
}

void change(ModuleIdentity& identity, const Arguments& arguments) {
    if (arguments.id) {
        const auto id = uniqueIdFromText(*arguments.id);
        if (!id) throw MakerError("--id", "\"" + *arguments.id + "\" is not four plain characters");
        identity.uniqueId = *id;
    }
    if (arguments.title) identity.packTitle = checkedText(*arguments.title, "--title");
    if (arguments.vendor) identity.vendor = checkedText(*arguments.vendor, "--vendor");
}

void print(const ModuleIdentity& identity) {
    std::cout << "id:     " << uniqueIdAsText(identity.uniqueId) << "\ntitle:  " << identity.packTitle
              << "\nvendor: " << identity.vendor << '\n';
}

void brandFields(const Arguments& arguments, std::string start) {
    const auto* bytes = reinterpret_cast<std::uint8_t*>(start.data());
    ModuleIdentity identity = readIdentityFields({bytes, start.size()});
    change(identity, arguments);
    if (!writeIdentityFields({reinterpret_cast<std::uint8_t*>(start.data()), start.size()}, identity))
        throw MakerError(arguments.module, "the header has no room for an identity");
    std::fstream file(filePath(arguments.module), std::ios::in | std::ios::out | std::ios::binary);
    file.write(start.data(), static_cast<std::streamsize>(start.size()));
    if (!file.flush()) throw MakerError(arguments.module, "cannot be written");
    print(identity);
}

void brandSidecar(const Arguments& arguments) {
    const std::string path = arguments.module + sidecarSuffix;
    ModuleIdentity identity = parseSidecar(readStart(path, sidecarBytes));
    change(identity, arguments);
    std::ofstream file(filePath(path), std::ios::binary | std::ios::trunc);
    file << formatSidecar(identity);
    if (!file.flush()) throw MakerError(path, "cannot be written");
    print(identity);
}

void brand(const Arguments& arguments) {
    const std::string start = readStart(arguments.module, identityField::end);
    if (start.empty()) throw MakerError(arguments.module, "cannot be read");
    if (hasIdentityFields({reinterpret_cast<const std::uint8_t*>(start.data()), start.size()}))
        brandFields(arguments, start);
    else
        brandSidecar(arguments);
}

} // namespace

void addBrandCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command =
        program.add_subcommand("brand", "Give a copy of the plug-in module a pack's identity");
    command
        ->add_option("MODULE", arguments->module, "The module: a .dll, or a .so, which gets a file beside it")
        ->required();
    command->add_option("--id", arguments->id, "The four characters by which hosts tell plug-ins apart");
    command->add_option("--title", arguments->title, "The pack's title, at most 16 bytes");
    command->add_option("--vendor", arguments->vendor, "The vendor's name, at most 16 bytes");
    command->callback([arguments] { brand(*arguments); });
}

} // namespace zarno

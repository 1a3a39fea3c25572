// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/common/ProgressBar.h"
#include "tools/import/Importer.h"
#include "tools/import/Readers.h"
#include "tools/zarno/Commands.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <memory>

namespace zarno {
namespace {

struct Arguments {
    std::string source, out;
    bool embed = false, stream = false, memory = false, json = false;
};

ImportedInstrument readSource(const Arguments& arguments, ImportReport& report) {
    const std::filesystem::path path = filePath(arguments.source);
    if (std::filesystem::is_directory(path)) {
        if (std::filesystem::exists(path / "drumkit.xml")) return readDrumkit(arguments.source, report);
    }
    if (!std::filesystem::exists(path)) throw MakerError(arguments.source, "there is no such file or folder");
    throw MakerError(arguments.source, "this is no folder with a drumkit.xml");
}

void import(const Arguments& arguments) {
    ImportReport report;
    report.source = arguments.source;
    const ImportedInstrument source = readSource(arguments, report);
    ImportOptions options;
    options.out = arguments.out;
    options.embed = arguments.embed;
    options.storage = arguments.stream   ? SampleStorage::Stream
                      : arguments.memory ? SampleStorage::Memory
                                         : SampleStorage::Auto;
    {
        ProgressBar progress("Importing");
        options.progress = [&progress](double fraction) { progress.show(fraction); };
        importInstrument(source, options, report);
    }
    if (arguments.json)
        std::cout << report.toJson().dump(1) << '\n';
    else
        std::cout << report.toText();
}

} // namespace

void addImportCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command = program.add_subcommand("import", "Make an instrument file from another format");
    command->add_option("SOURCE", arguments->source, "A folder with a drumkit.xml")->required();
    command->add_option("OUT", arguments->out, "The instrument file to write (*.zse)")->required();
    command->add_flag("--embed", arguments->embed, "Put the samples into the instrument file");
    auto* stream = command->add_flag("--stream", arguments->stream, "Samples are streamed from disk");
    command->add_flag("--memory", arguments->memory, "Samples are read into memory")->excludes(stream);
    command->add_flag("--json", arguments->json, "Report for programs to read");
    command->callback([arguments] { import(*arguments); });
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/common/ProgressBar.h"
#include "tools/import/Importer.h"
#include "tools/import/LowerCase.h"
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
    FolderOptions folder;
};

ImportedInstrument readSource(const Arguments& arguments, ImportReport& report) {
    const std::filesystem::path path = filePath(arguments.source);
    if (std::filesystem::is_directory(path)) {
        const bool isDrumkit =
            std::filesystem::exists(path / "drumkit.xml") && arguments.folder.pattern.empty();
        return isDrumkit ? readDrumkit(arguments.source, report)
                         : readSoundFolder(arguments.source, arguments.folder, report);
    }
    if (!std::filesystem::exists(path)) throw MakerError(arguments.source, "there is no such file or folder");
    if (lowerCase(utf8Text(path.extension())) == ".sfz") return readSfz(arguments.source, report);
    throw MakerError(arguments.source, "this is neither an SFZ file nor a folder");
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
    CLI::App* command =
        program.add_subcommand("import", "Make an instrument file from another format or a folder of sounds");
    command
        ->add_option("SOURCE", arguments->source, "An SFZ file, or a folder of sounds or with a drumkit.xml")
        ->required();
    command->add_option("OUT", arguments->out, "The instrument file to write (*.zse)")->required();
    command->add_flag("--embed", arguments->embed, "Put the samples into the instrument file");
    auto* stream = command->add_flag("--stream", arguments->stream, "Samples are streamed from disk");
    command->add_flag("--memory", arguments->memory, "Samples are read into memory")->excludes(stream);
    command->add_option("--pattern", arguments->folder.pattern,
                        "How file names of a folder are to be read: {key}, {velocity}, {robin}, {name}, {}");
    command->add_flag("--json", arguments->json, "Report for programs to read");
    command->callback([arguments] { import(*arguments); });
}

} // namespace zarno

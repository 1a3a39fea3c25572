// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"
#include "tools/check/InstrumentCheck.h"
#include "tools/common/ProgressBar.h"
#ifdef ZARNO_HAS_DRAWING
#include "tools/draw/AutoPanel.h"
#endif
#include "tools/import/Importer.h"
#include "tools/import/LowerCase.h"
#include "tools/import/Readers.h"
#include "tools/import/SoundFontFile.h"
#include "tools/import/SoundFontLibrary.h"
#include "tools/zarno/Commands.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <memory>

namespace zarno {
namespace {

constexpr std::size_t mostRemarkLines = 20; // of a screen

struct Arguments {
    std::string source, out;
    std::string preset, panel;
    bool embed = false, plain = false, stream = false, memory = false, json = false, allRemarks = false;
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
    throw MakerError(arguments.source, "this is neither an SFZ file, a SoundFont, nor a folder");
}

// Of a SoundFont one preset, or all into a folder.
void importSource(const Arguments& arguments, const ImportOptions& options, ImportReport& report) {
    const std::string kind = lowerCase(utf8Text(filePath(arguments.source).extension()));
    if (kind != ".sf2" && kind != ".sf3")
        return importInstrument(readSource(arguments, report), options, report);
    const SoundFontFile file = SoundFontFile::read(arguments.source);
    if (!arguments.preset.empty()) return importSoundFont(file, arguments.preset, options, report);
    if (filePath(arguments.out).extension() == ".zse")
        throw MakerError(arguments.out, "name a preset (--preset), or a folder for all of them");
    importAllPresets(file, options, report);
}

// "auto" draws a panel; anything else names a layout file.
void addPanel(const std::string& panel, InstrumentFile& file) {
#ifdef ZARNO_HAS_DRAWING
    if (panel == "auto") return addAutoPanel(file);
#endif
    File layout(panel);
    if (!layout.isOpen()) throw MakerError(panel, "the layout cannot be read");
    file.layout.bytes.resize(static_cast<std::size_t>(layout.size()));
    if (layout.read(file.layout.bytes.data(), file.layout.bytes.size()) != file.layout.bytes.size())
        throw MakerError(panel, "the layout cannot be read");
}

// What no instrument should have: silence, one side only, clipping.
void hear(const std::string& path, ImportReport& report) {
    Findings findings;
    checkLevels(
        reportOn(path), [](double) {}, findings);
    for (const Finding& finding : findings)
        if (finding.what.ends_with("clipped")) // a line for all of them
            report.add(ImportReport::Severity::Error, "note above full scale",
                       "clipped; zarno check lists them", finding.place + ": " + finding.what);
        else
            report.add(ImportReport::Severity::Error, finding.what, "see zarno check", path);
}

void import(const Arguments& arguments) {
    ImportReport report;
    report.source = arguments.source;
    ImportOptions options;
    options.out = arguments.out;
    options.embed = arguments.embed;
    options.plain = arguments.plain;
    options.storage = arguments.stream   ? SampleStorage::Stream
                      : arguments.memory ? SampleStorage::Memory
                                         : SampleStorage::Auto;
    options.check = hear;
    options.announce = [](std::uint64_t bytes) {
        std::cerr << "samples will take at most " << (bytes + 999'999) / 1'000'000 << " MB\n";
    };
    if (!arguments.panel.empty())
        options.finish = [&arguments](Model& model) { addPanel(arguments.panel, model.file); };
    const auto tell = [&] {
        if (arguments.json)
            std::cout << report.toJson().dump(1) << '\n';
        else
            std::cout << report.summary() << report.remarksText(arguments.allRemarks ? 0 : mostRemarkLines);
    };
    try {
        ProgressBar progress("Importing");
        options.progress = [&progress](double fraction) { progress.show(fraction); };
        importSource(arguments, options, report);
    } catch (const MakerError&) {
        tell(); // why nothing came of it
        throw;
    }
    tell();
}

} // namespace

void addImportCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command =
        program.add_subcommand("import", "Make an instrument file from another format or a folder of sounds");
    command
        ->add_option("SOURCE", arguments->source,
                     "An SFZ file, a SoundFont, or a folder of sounds or with a drumkit.xml")
        ->required();
    command
        ->add_option("OUT", arguments->out,
                     "The instrument file to write (*.zse); a folder for all presets of a SoundFont")
        ->required();
    command->add_flag("--embed", arguments->embed, "Put the samples into the instrument file");
    command->add_flag("--plain", arguments->plain,
                      "No filtered and shaped copies of samples: smaller, and brighter");
    auto* stream = command->add_flag("--stream", arguments->stream, "Samples are streamed from disk");
    command->add_flag("--memory", arguments->memory, "Samples are read into memory")->excludes(stream);
    command->add_option("--pattern", arguments->folder.pattern,
                        "How file names of a folder are to be read: {key}, {velocity}, {robin}, {name}, {}");
    command->add_option("--preset", arguments->preset,
                        "One preset of a SoundFont: its program, bank:program, or its name");
    command->add_option("--panel", arguments->panel,
                        "\"auto\": draw a panel with the name and the knobs that matter; or a layout file");
    command->add_flag("--remarks", arguments->allRemarks, "All kinds of remarks, not only those of a screen");
    command->add_flag("--json", arguments->json, "Report for programs to read");
    command->callback([arguments] { import(*arguments); });
}

} // namespace zarno

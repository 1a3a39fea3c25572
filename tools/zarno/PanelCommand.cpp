// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "gui/CLookAndFeel.h"
#include "gui/CPlayerGUI.h"
#include "gui/ControlRefresh.h"
#include "gui/DefaultLayout.h"
#include "gui/PanelEdits.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"
#include "tools/zarno/Commands.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/PackReport.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <fstream>
#include <memory>

namespace zarno {
namespace {

struct Arguments {
    std::string source, out;
    int zoom = 100;
};

// A folder is packed into a file that goes with this; its samples stay where they are, since no panel shows
// them.
class PackedFolder {
  public:
    explicit PackedFolder(const std::string& folder)
        : file_(juce::File::createTempFile(".zse")) {
        PackNotes notes;
        const Model model = readInstrumentFolder(folder, packOptions(), notes);
        std::ofstream out(filePath(path()), std::ios::binary);
        writeInstrument(model, out);
        if (!out.flush()) throw MakerError(path(), "the file cannot be written");
    }
    ~PackedFolder() { file_.deleteFile(); }
    PackedFolder(const PackedFolder&) = delete;
    PackedFolder& operator=(const PackedFolder&) = delete;

    std::string path() const { return file_.getFullPathName().toStdString(); }

  private:
    juce::File file_;
};

// What the window writes into the labels that show the instrument and its active groups.
void fillLabels(const PanelControls& controls, const ZInstrument& instrument) {
    const int group = instrument.currentGroupIndex();
    const std::string title = toUtf8(instrument.texts().name);
    const std::string active =
        group < 0 ? "" : toUtf8(instrument.groups()[static_cast<std::size_t>(group)]->name);
    for (auto* label : controls.labels) {
        const int id = PanelBuilder::idOf(*label);
        if (id != 1 && id != 2) continue;
        label->setText(juce::String::fromUTF8((id == 1 ? title : active).c_str()),
                       juce::dontSendNotification);
    }
}

juce::Image draw(ZInstrument& instrument, const Arguments& arguments) {
    CLookAndFeel lookAndFeel;
    lookAndFeel.install();
    juce::String fault;
    CPlayerGUI panel({}, nullptr, [&](const juce::String&, const juce::String& text) { fault = text; });
    const InstrumentTexts& texts = instrument.texts();
    panel.rebuild(texts.layout ? std::string_view(*texts.layout) : std::string_view(defaultLayout),
                  texts.panelImage);
    if (fault.isNotEmpty())
        throw MakerError(arguments.source, "the layout cannot be shown: " + fault.toStdString());
    ControlRefresh().refresh(panel.controls(), PanelEdits(instrument, {instrument.currentGroupIndex()}));
    fillLabels(panel.controls(), instrument);
    return panel.createComponentSnapshot(panel.getLocalBounds(), false,
                                         static_cast<float>(arguments.zoom) / 100.0f);
}

void drawPanel(const Arguments& arguments) {
    const juce::ScopedJuceInitialiser_GUI juceSession;
    std::unique_ptr<PackedFolder> packed;
    if (isFolder(arguments.source)) packed = std::make_unique<PackedFolder>(arguments.source);
    ZInstrument instrument;
    const LoadResult result =
        loadInstrument(instrument, packed ? packed->path() : absolutePath(arguments.source));
    if (!result) throw MakerError({}, sentence(result.problem));
    const juce::Image picture = draw(instrument, arguments);
    juce::MemoryOutputStream png;
    std::ofstream out(filePath(arguments.out), std::ios::binary | std::ios::trunc);
    if (juce::PNGImageFormat().writeImageToStream(picture, png))
        out.write(static_cast<const char*>(png.getData()), static_cast<std::streamsize>(png.getDataSize()));
    if (png.getDataSize() == 0 || !out.flush()) throw MakerError(arguments.out, "cannot be written");
}

} // namespace

void addPanelCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command = program.add_subcommand("panel", "Draw the panel as the player shows it");
    command->add_option("SOURCE", arguments->source, "The instrument file, or the folder it is packed from")
        ->required();
    command->add_option("OUT", arguments->out, "The picture to write (*.png)")->required();
    command->add_option("--zoom", arguments->zoom, "Per cent of its size")->check(CLI::Range(50, 400));
    command->callback([arguments] { drawPanel(*arguments); });
}

} // namespace zarno

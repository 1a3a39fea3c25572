// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/WindowDialogs.h"

#include "gui/WindowMenus.h"
#if JUCE_WINDOWS
#include "platform/MessageBox_win32.h"
#endif

namespace zarno {
namespace {

constexpr const char* lastFileKey = "load instrument";

juce::File fileOf(const juce::String& path) {
    return juce::File::isAbsolutePath(path) ? juce::File(path) : juce::File();
}

} // namespace

void WindowDialogs::show(juce::PopupMenu menu, juce::Component& source, std::function<void(int)> picked) {
    menu.showMenuAsync(juce::PopupMenu::Options()
                           .withTargetComponent(source)
                           .withDeletionCheck(window_)
                           .withMaximumNumColumns(1),
                       [safe = juce::Component::SafePointer(&window_), picked = std::move(picked)](int result) {
                           if (safe != nullptr && result > 0) picked(result);
                       });
}

void WindowDialogs::showInstrumentMenu(juce::Component& source) {
    show(makeInstrumentMenu(link_.instrumentTitles(), link_.currentIndex()), source,
         [this](int id) { actions_.load(id - 1, {}); });
}

void WindowDialogs::showGroupMenu(juce::Component& source, juce::PopupMenu menu, std::uint32_t load) {
    show(std::move(menu), source, [this, load](int id) {
        const auto keys = juce::ModifierKeys::getCurrentModifiers();
        if (load == link_.loadGeneration())
            actions_.pickGroup(id - 1, keys.isCommandDown() || keys.isCtrlDown() || keys.isShiftDown());
    });
}

void WindowDialogs::showMissingMenu(juce::Component& source) {
    show(makeMissingMenu(link_.missingSamples()), source, [this](int) {
        dialogs_.chooseSampleFolder(fileOf(link_.setting("missing folder")),
                                    [this](const juce::File& folder) { link_.locateMissingSamples(folder); });
    });
}

void WindowDialogs::showZoomMenu(juce::Component& source, int percent, int largest) {
    show(makeZoomMenu(percent, largest), source, [this](int chosen) { actions_.setZoom(chosen); });
}

void WindowDialogs::openInstrument() {
    dialogs_.openInstrument(fileOf(link_.setting(lastFileKey)), [this](const juce::File& file) {
        actions_.load(-1, file.getFullPathName());
        link_.setSetting(lastFileKey, file.getFullPathName());
    });
}

void WindowDialogs::locateInstrument() {
    dialogs_.openInstrument(fileOf(link_.setting(lastFileKey)),
                            [this](const juce::File& file) { link_.locateInstrument(file); });
}

void WindowDialogs::openLibraryFolder() {
    const auto folder = fileOf(link_.libraryFolders()[0]);
    if (folder.createDirectory().wasOk() && folder.startAsProcess()) return;
    showBox("Zarno Sampler Player", "Cannot open the folder " + folder.getFullPathName());
}

// On Windows the system's own box, which outlives the window. Elsewhere one of JUCE's that goes with the window.
void WindowDialogs::showBox(const juce::String& caption, const juce::String& text) {
#if JUCE_WINDOWS
    showMessageBox(caption.toStdString(), text.toStdString());
#else
    box_ = std::make_unique<juce::AlertWindow>(caption, text, juce::MessageBoxIconType::WarningIcon, &window_);
    box_->addButton("OK", 0, juce::KeyPress(juce::KeyPress::returnKey),
                    juce::KeyPress(juce::KeyPress::escapeKey));
    box_->enterModalState(true, juce::ModalCallbackFunction::create(
                                    [box = juce::Component::SafePointer(box_.get()), this](int) {
                                        if (box != nullptr) box_.reset();
                                    }));
#endif
}

} // namespace zarno

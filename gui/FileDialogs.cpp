// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/FileDialogs.h"

namespace zarno {
namespace {

constexpr int chooseFolder =
    juce::FileBrowserComponent::openMode | juce::FileBrowserComponent::canSelectDirectories;

FileDialogs::Answer ifChosen(FileDialogs::Answer answer) {
    return [answer = std::move(answer)](const juce::File& file) {
        if (file != juce::File()) answer(file);
    };
}

} // namespace

void FileDialogs::openInstrument(const juce::File& start, Answer answer) {
    launch("Open Instrument", start, "*.zse;*.zs2",
           juce::FileBrowserComponent::openMode | juce::FileBrowserComponent::canSelectFiles,
           ifChosen(std::move(answer)));
}

void FileDialogs::chooseSampleFolder(const juce::File& start, Answer answer) {
    launch("Locate Sample Folder", start, "*", chooseFolder, ifChosen(std::move(answer)));
}

void FileDialogs::locateSampleFolder(const juce::String& sampleName, const juce::File& start, Answer answer) {
    launch("Locate Sample Folder for " + sampleName, start, "*.*", chooseFolder, std::move(answer));
}

void FileDialogs::launch(const juce::String& title, const juce::File& start, const juce::String& patterns,
                         int flags, Answer answer) {
    auto documents = juce::File::getSpecialLocation(juce::File::userDocumentsDirectory);
    if (!documents.isDirectory()) documents = juce::File::getSpecialLocation(juce::File::userHomeDirectory);
    const bool isThere =
        start != juce::File() && (start.exists() || start.getParentDirectory().isDirectory());
    chooser_ =
        std::make_unique<juce::FileChooser>(title, isThere ? start : documents, patterns, isNativeUsable());
    chooser_->launchAsync(flags, [answer = std::move(answer)](const juce::FileChooser& chooser) {
        answer(chooser.getResult());
    });
}

#if JUCE_LINUX
namespace {

bool isOnPath(const char* program) {
    const auto folders =
        juce::StringArray::fromTokens(juce::SystemStats::getEnvironmentVariable("PATH", {}), ":", {});
    for (const auto& folder : folders)
        if (juce::File::isAbsolutePath(folder) && juce::File(folder).getChildFile(program).existsAsFile())
            return true;
    return false;
}

bool works(const char* program) {
    juce::ChildProcess process;
    constexpr int patienceMs = 5000; // on a busy machine
    return process.start(juce::StringArray{program, "--version"}) &&
           process.waitForProcessToFinish(patienceMs) && process.getExitCode() == 0;
}

// A helper that cannot even say its version would end without a dialog, like a cancel. The framework takes
// one of these two by rules of its own, so whichever is there has to work.
bool helpersWork() {
    bool isAnyThere = false;
    for (const char* helper : {"zenity", "kdialog"}) {
        if (!isOnPath(helper)) continue;
        if (!works(helper)) return false;
        isAnyThere = true;
    }
    return isAnyThere;
}

} // namespace
#endif

bool FileDialogs::isNativeUsable() {
#if JUCE_LINUX
    static const bool isUsable = helpersWork();
    return isUsable;
#else
    return true;
#endif
}

} // namespace zarno

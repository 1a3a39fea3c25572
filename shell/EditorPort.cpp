// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/EditorPort.h"

#include "platform/Paths.h"
#include "platform/ThreadRole.h"
#include "platform/Utf8.h"
#include "shell/CZSP.h"
#include "shell/StandaloneHooks.h"

namespace zarno {
namespace {

// Names in instrument files need not be UTF-8.
juce::String fromEngine(const std::string& text) {
    return juce::String::fromUTF8(toUtf8(text).c_str());
}

juce::StringArray toArray(const std::vector<std::string>& texts) {
    juce::StringArray array;
    for (const std::string& text : texts)
        array.add(fromEngine(text));
    return array;
}

bool isMessageThread() {
    const auto* manager = juce::MessageManager::getInstanceWithoutCreating();
    return manager != nullptr && manager->isThisTheMessageThread();
}

} // namespace

void EditorPort::setWindow(EditorWindow* window) {
    if (window != nullptr)
        ++windowNumber_; // before the window: a thread that sees the window sees its number
    window_ = window;
}

void EditorPort::loadingStarted() {
    if (isMessageThread() && window_ != nullptr) window_.load()->loadingStarted();
}

void EditorPort::flushMessages() {
    constexpr int timeoutMs = 500;
    abandonMessages();
    if (isMessageThread()) return;
    const auto handled = std::make_shared<juce::WaitableEvent>();
    if (juce::MessageManager::callAsync([handled] { handled->signal(); })) handled->wait(timeoutMs);
}

void EditorPort::showEndOfLoad() {
    const thread::Acts asMessage(thread::message);
    processor_.tellHostOfChange();
    EditorWindow* window = window_;
    if (window == nullptr || isLoading()) return;
    window->loadingFinished();
    askForMissingSamples(*window);
    const bool isCancelled = processor_.loadRunner().report().result.problem.kind == LoadProblem::Kind::Cancelled;
    if (!lastLoadSucceeded() && !isCancelled) window->loadFailed();
}

// What a load did not ask, because its caller waited and the dialog may depend on the caller's return.
void EditorPort::askForMissingSamples(EditorWindow& window) {
    if (!processor_.loadRunner().takeUnaskedQuestion()) return;
    const auto name = fromEngine(fileName(processor_.loadRunner().report().result.missing.front()));
    window.askForSampleFolder(name, processor_.loadRunner().missingFolder(),
                              [this](const juce::File& folder) {
                                  if (folder != juce::File()) locateMissingSamples(folder);
                              });
}

ZInstrument& EditorPort::engine() {
    return processor_.engine();
}
const juce::CriticalSection& EditorPort::contentsLock() {
    return processor_.loadRunner().contentsLock();
}
std::uint32_t EditorPort::groupsGeneration() const {
    return processor_.groupsGeneration();
}
std::uint32_t EditorPort::loadGeneration() const {
    return processor_.loadGeneration();
}
juce::ListBoxModel& EditorPort::instrumentList() {
    return processor_;
}

juce::StringArray EditorPort::instrumentTitles() const {
    juce::StringArray titles;
    for (int i = 0; i < processor_.getNumRows(); ++i)
        titles.add(processor_.getProgramName(i));
    return titles;
}

juce::String EditorPort::libraryProblem() const {
    return fromEngine(processor_.library()->leftOut);
}

int EditorPort::currentIndex() const {
    const auto [path, index] = processor_.loads().current();
    const auto library = processor_.library(); // which may have been read again since the choice
    const bool isThere = library->contains(index) && library->entries[static_cast<std::size_t>(index)].path == path;
    return isThere ? index : library->indexOf(path);
}

void EditorPort::selectInstrument(int index, const juce::String& path) {
    processor_.selectInstrument(index, path, false, false);
}

void EditorPort::tryAgain() {
    processor_.loadAgain();
}

bool EditorPort::isLoading() const {
    return processor_.loads().isLoading();
}
bool EditorPort::lastLoadSucceeded() const {
    return processor_.loads().lastLoadSucceeded();
}
double EditorPort::loadProgress() const {
    return processor_.progress();
}
EditorLink::LoadReport EditorPort::lastLoad() const {
    const auto [path, result] = processor_.loadRunner().report();
    LoadReport report;
    report.fileName = fromEngine(fileName(path));
    report.problem = juce::String::fromUTF8(sentence(result.problem).c_str());
    report.failed = !path.empty() && !result.loaded;
    report.fileIsMissing = result.problem.kind == LoadProblem::Kind::NotFound;
    return report;
}

void EditorPort::locateInstrument(const juce::File& file) {
    processor_.loadInstead(file.getFullPathName());
}

EditorLink::Missing EditorPort::missingSamples() const {
    const auto result = processor_.loadRunner().report().result;
    return {toArray(result.missing), toArray(result.unsupported)};
}

void EditorPort::locateMissingSamples(const juce::File& folder) {
    processor_.settings().set(settingKey::missingFolder, folder.getFullPathName());
    tryAgain();
}

bool EditorPort::shouldReportPanelError() {
    const auto load = processor_.loadGeneration();
    return std::exchange(reportedLoad_, load) != load;
}

juce::String EditorPort::setting(const juce::String& key, const juce::String& fallback) const {
    return processor_.settings().get(key, fallback);
}
void EditorPort::setSetting(const juce::String& key, const juce::String& value) {
    processor_.settings().set(key, value);
}

juce::String EditorPort::packTitle() const {
    return juce::String::fromUTF8(processor_.identity().packTitle.c_str());
}
juce::String EditorPort::vendorText() const {
    return juce::String::fromUTF8(processor_.identity().vendor.c_str());
}
void EditorPort::editEnded() {
    processor_.tellHostOfChange();
}
KeyboardRoute& EditorPort::keyboardRoute() {
    return processor_.keyboardRoute();
}

EditorLink::Activity EditorPort::activity() {
    constexpr juce::uint32 pauseMs = 200;
    const auto reading = processor_.activityMeter().read();
    const auto now = juce::Time::getMillisecondCounter();
    if (std::exchange(blocksSeen_, reading.blocks) != reading.blocks) blockSeenAt_ = now;
    return now - blockSeenAt_ < pauseMs ? Activity{reading.peak, reading.cpu} : Activity{};
}

bool EditorPort::lacksAudioDevice() const {
    return StandaloneHooks::lacksAudioDevice && StandaloneHooks::lacksAudioDevice();
}

bool EditorPort::hasAudioSettings() const {
    return StandaloneHooks::showAudioSettings != nullptr;
}

void EditorPort::showAudioSettings() {
    if (StandaloneHooks::showAudioSettings) StandaloneHooks::showAudioSettings();
}

juce::StringArray EditorPort::instrumentPaths() const {
    juce::StringArray paths;
    const auto library = processor_.library();
    for (const auto& entry : library->entries)
        paths.add(juce::String::fromUTF8(entry.path.c_str()));
    return paths;
}

// The folder beside the module is one that the user made, or cannot write to.
juce::StringArray EditorPort::libraryFolders() const {
    juce::StringArray folders;
    for (const auto& folder : processor_.liveLibrary().folders())
        if (!folder.empty()) folders.add(juce::String::fromUTF8(folder.c_str()));
    if (folders.size() > 1 && !isFolder(folders[0].toStdString())) folders.move(0, folders.size() - 1);
    return folders;
}

void EditorPort::refreshLibrary() {
    processor_.liveLibrary().refresh(false);
}

std::uint32_t EditorPort::libraryGeneration() {
    constexpr juce::uint32 pauseMs = 3000;
    const auto now = juce::Time::getMillisecondCounter();
    auto& library = processor_.liveLibrary();
    library.takeUp();
    if (now - libraryCheckedAt_ > pauseMs) {
        libraryCheckedAt_ = now;
        library.refresh(true);
    }
    return library.generation();
}

void EditorPort::cancelLoad() {
    processor_.cancelLoad();
}

} // namespace zarno

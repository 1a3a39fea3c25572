// SPDX-License-Identifier: GPL-3.0-or-later
// How CZSP changes its instrument: the choice, the thread, the load, its end.
#include "data/Limits.h"
#include "platform/MessageBox.h"
#include "platform/Paths.h"
#include "platform/Patience.h"
#include "platform/ThreadRole.h"
#include "shell/CZSP.h"
#include "shell/FolderQuestion.h"
#include "shell/HostChunk.h"
#include "shell/LoadJob.h"
#include "shell/UserFolders.h"

#include <chrono>

namespace zarno {
namespace {

constexpr unsigned lookEveryMs = 5;
constexpr auto readerPatience =
    std::chrono::milliseconds(600); // what an exit grants the reader to end by itself

juce::String fromUtf8(const std::string& text) {
    return juce::String::fromUTF8(text.data(), static_cast<int>(text.size()));
}

juce::StringArray toArray(const std::vector<std::string>& texts) {
    juce::StringArray array;
    for (const std::string& text : texts)
        array.add(fromUtf8(text));
    return array;
}

bool isMessageThread() {
    const auto* manager = juce::MessageManager::getInstanceWithoutCreating();
    return manager != nullptr && manager->isThisTheMessageThread();
}

} // namespace

// Resolves what was asked for, and makes it the current one when there is something to load.
bool CZSP::choose(int& index, juce::String& target, bool reapply) {
    if (target.isEmpty() && library_.contains(index))
        target = fromUtf8(library_.entries[static_cast<std::size_t>(index)].path);
    else if (const int found = library_.indexOf(target.toStdString()); found >= 0)
        index = found;
    const juce::ScopedLock hold(lock_);
    if (target.isEmpty() || (target == currentPath_ && !reapply)) return false;
    if (target != currentPath_ && !reapply) {
        receivedChunk_.clear(); // another one was chosen: what a project asked for is over
        pendingState_.clear();
    }
    currentPath_ = target;
    currentIndex_ = index;
    return true;
}

void CZSP::selectInstrument(int index, const juce::String& path, bool reapply, bool synchronous) {
    juce::String target = path;
    if (!choose(index, target, reapply)) {
        if (target.isEmpty() && reapply) applyPendingState();
        return;
    }
    if (synchronous)
        loadNow();
    else
        startLoading();
}

// A request during a load starts nothing: the running one ends with the path it began with, on purpose.
void CZSP::startLoading() {
    {
        const juce::ScopedLock hold(lock_);
        if (running_) return;
        running_ = true;
        loading_ = true;
        progress_ = -1.0;
    }
    if (isMessageThread() && editorPort_.window() != nullptr) editorPort_.window()->loadingStarted();
    waitForThreadToExit(-1); // of a former load, which has only to return
    // Only its reader has the lowest priority: this one holds the callback lock for moments, and on a busy
    // machine the audio thread would wait behind everybody for it to go on.
    if (!startThread(juce::Thread::Priority::normal)) endLoad();
}

// A load that runs ends first. It may be on the way to the user with a question, who is not to be waited for,
// and this may be the message thread: so what it asks is declined. Its instrument is to be replaced anyway.
void CZSP::loadNow() {
    ++waiting_;
    for (;; juce::Thread::sleep(static_cast<int>(lookEveryMs))) {
        const juce::ScopedLock hold(lock_);
        if (running_) continue;
        running_ = true;
        loading_ = true;
        progress_ = -1.0;
        break;
    }
    --waiting_;
    load(false);
    endLoad();
}

void CZSP::loadAgain() {
    if (!isLoading() && lastLoadSucceeded()) {
        juce::MemoryBlock chunk;
        getStateInformation(chunk);
        const auto tail =
            splitChunk({static_cast<const std::uint8_t*>(chunk.getData()), chunk.getSize()}).tail;
        const juce::ScopedLock hold(lock_);
        pendingState_.assign(tail.begin(), tail.end());
    }
    selectInstrument(currentIndex(), currentPath(), true, false);
}

void CZSP::run() {
    load(true);
    endLoad();
}

void CZSP::load(bool inBackground) {
    const juce::String path = currentPath();
    {
        const ZInstrument::Hurry hurry(engine_); // a bounce that waits for the disk holds the callback lock
        suspendProcessing(true);
    }
    const thread::Acts asLoading(thread::loading);
    engine_.setLoading(true);
    const LoadResult result = readAndTakeOver(path, inBackground);
    lastLoadSucceeded_ = result.loaded;
    {
        const juce::ScopedLock hold(lock_);
        loadedPath_ = path;
        missing_ = {toArray(result.missing), toArray(result.unsupported)};
    }
    releaseAllNotes();
    engine_.setLoading(false);
    suspendProcessing(false);
    applyPendingState();
}

LoadResult CZSP::readAndTakeOver(const juce::String& path, bool inBackground) {
    using Clock = std::chrono::steady_clock;
    const bool isWatched = editorPort_.window() != nullptr;
    auto job = LoadJob::start({path.toStdString(),
                               settings_.get(path).toStdString(),
                               {settings_.get(settingKey::missingFolder).toStdString(), homeFolder()},
                               isWatched ? SampleSearch::whileWatched : SampleSearch::Limits(),
                               inBackground});
    if (!job) return {};
    std::unique_ptr<FolderQuestion> question;
    auto cancelledAt = Clock::time_point::max();
    for (;;) {
        const auto state = job->wait(lookEveryMs);
        if (state == LoadJob::State::Finished) break;
        if (state == LoadJob::State::Opened) { // what was loaded goes before the new one takes its memory
            const juce::ScopedLock hold(contentsLock_);
            engine_.clear();
            job->proceed();
        }
        if (state == LoadJob::State::Asking) discuss(*job, question);
        if (!loadProgress(job->progress(), "", "") && cancelledAt == Clock::time_point::max()) {
            job->cancel();
            cancelledAt = Clock::now();
        }
        const bool isLate =
            cancelledAt != Clock::time_point::max() && Clock::now() - cancelledAt > readerPatience;
        if (isLate || job->hangs()) {
            LoadJob::abandon(std::move(job));
            return {};
        }
    }
    job->join();
    if (job->result().opened) {
        const juce::ScopedLock hold(contentsLock_);
        takeOver(engine_, job->contents(), job->result());
    }
    const juce::ScopedLock hold(lock_);
    unasked_ = isWatched && !inBackground && !job->result().missing.empty();
    return job->result();
}

bool CZSP::mayAsk() const {
    return editorPort_.window() != nullptr && waiting_ == 0 && !threadShouldExit();
}

// One step of it: the user may take any time.
void CZSP::discuss(LoadJob& job, std::unique_ptr<FolderQuestion>& question) {
    std::optional<std::string> answer = std::string();
    if (mayAsk()) {
        if (!question)
            question = std::make_unique<FolderQuestion>(editorPort_, job.question(), missingFolder());
        answer = question->answer();
    }
    if (!answer) return juce::Thread::sleep(static_cast<int>(lookEveryMs));
    question.reset();
    if (!answer->empty()) settings_.set(settingKey::missingFolder, fromUtf8(*answer));
    job.answer(*answer);
}

// One that does not answer would hang the dialog that starts in it.
juce::File CZSP::missingFolder() const {
    const auto folder = settings_.get(settingKey::missingFolder);
    const bool answers = juce::File::isAbsolutePath(folder) &&
                         doWithPatience(limits::hungReadMs,
                                        [path = folder.toStdString()](const SignOfLife&) { isFolder(path); });
    return answers ? juce::File(folder) : defaultSampleFolder();
}

// The two flags change together, so that no request falls into a gap at the end.
void CZSP::endLoad() {
    {
        const juce::ScopedLock hold(lock_);
        if (lastLoadSucceeded_) receivedChunk_.clear();
        running_ = false;
        loading_ = false;
        loadGeneration_.fetch_add(1, std::memory_order_relaxed);
    }
    if (threadShouldExit()) return;
    tellHostOfChange();
    endOfLoad_->post();
}

void CZSP::showEndOfLoad() {
    const thread::Acts asMessage(thread::message);
    EditorWindow* window = editorPort_.window();
    if (window == nullptr || loading_) return;
    window->loadingFinished();
    askAfterwards(*window);
    // Last, since the box runs messages of its own: this object may be gone when it is dismissed.
    if (!lastLoadSucceeded_) showMessageBox("Zarno Sampler Player", "Unable to load this instrument.");
}

// What a load did not ask because its caller waited, on whose return the dialog might depend.
void CZSP::askAfterwards(EditorWindow& window) {
    juce::String path;
    {
        const juce::ScopedLock hold(lock_);
        if (!std::exchange(unasked_, false)) return;
        path = missing_.notFound[0];
    }
    const auto name = path.fromLastOccurrenceOf(juce::File::getSeparatorString(), false, false);
    window.askForSampleFolder(name, missingFolder(), [this](const juce::File& folder) {
        if (folder != juce::File()) editorPort_.locateMissingSamples(folder);
    });
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LoadRunner.h"

#include "data/Limits.h"
#include "engine/ZInstrument.h"
#include "engine/ZSEDelegate.h"
#include "platform/Paths.h"
#include "platform/RunWithTimeout.h"
#include "platform/ThreadRole.h"
#include "shell/EditorPort.h"
#include "shell/FolderQuestion.h"
#include "shell/HostChunk.h"
#include "shell/LoadController.h"
#include "shell/LoadJob.h"
#include "shell/Settings.h"
#include "shell/UserFolders.h"

#include <cstdio>

namespace zarno {
namespace {

constexpr unsigned pollMs = 5;
constexpr auto cancelTimeout = std::chrono::milliseconds(600); // a cancelled reader ends by itself within it

juce::String fromUtf8(const std::string& text) {
    return juce::String::fromUTF8(text.data(), static_cast<int>(text.size()));
}

LoadResult failure(const std::string& path, LoadProblem::Kind kind) {
    LoadResult result;
    result.problem = {kind, path, 0, 0, {}};
    return result;
}

// A host that runs in a terminal shows it there, with or without a window.
void log(const LoadProblem& problem) {
    if (problem && problem.kind != LoadProblem::Kind::Cancelled)
        std::fprintf(stderr, "Zarno Sampler Player: %s\n", sentence(problem).c_str());
}

} // namespace

void LoadRunner::perform() {
    const LoadRequest& request = parts_.controller.running();
    ZInstrument& engine = parts_.engine;
    {
        const ZInstrument::Hurry hurry(engine); // a bounce that waits for the disk holds the callback lock
        parts_.processor.suspendProcessing(true);
    }
    bool succeeded = false;
    isCleared_ = false;
    {
        const thread::Acts asLoading(thread::loading);
        engine.setLoading(true);
        const LoadResult result = read(request);
        log(result.problem);
        succeeded = result.loaded;
        if (!isCleared_ && !request.receivedChunk.empty()) clearEngine(); // not another one with its values
        const juce::ScopedLock hold(reportLock_);
        report_ = {request.path, result};
    }
    engine.requestRelease(); // keys and pedals that the host let go of meanwhile
    engine.setLoading(false);
    parts_.processor.suspendProcessing(false);
    applyState(request.pendingState);
    parts_.controller.finish(succeeded, isCleared_);
}

void LoadRunner::fail() {
    {
        const juce::ScopedLock hold(reportLock_);
        report_ = {parts_.controller.running().path,
                   failure(parts_.controller.running().path, LoadProblem::Kind::OutOfMemory)};
    }
    parts_.controller.finish(false, false);
}

LoadResult LoadRunner::read(const LoadRequest& request) {
    const bool isWatched = parts_.editor.window() != nullptr;
    auto job = LoadJob::start({request.path,
                               parts_.settings.get(fromUtf8(request.path)).toStdString(),
                               {parts_.settings.get(settingKey::missingFolder).toStdString(), homeFolder()},
                               isWatched ? SampleSearch::whileWatched : SampleSearch::Limits(),
                               request.inBackground});
    if (!job) return failure(request.path, LoadProblem::Kind::OutOfMemory);
    if (const auto problem = follow(*job)) {
        LoadJob::abandon(std::move(job));
        return failure(request.path, *problem);
    }
    job->join();
    if (job->result().opened) {
        const juce::ScopedLock hold(contentsLock_);
        takeOver(parts_.engine, job->contents(), job->result());
    }
    const juce::ScopedLock hold(reportLock_);
    hasUnaskedQuestion_ = isWatched && !request.inBackground && !job->result().missing.empty();
    return job->result();
}

// Until the reader has finished. A reason when the reader has to be abandoned.
std::optional<LoadProblem::Kind> LoadRunner::follow(LoadJob& job) {
    std::unique_ptr<FolderQuestion> question;
    std::optional<Clock::time_point> cancelledAt;
    for (;;) {
        const auto state = job.wait(pollMs);
        if (state == LoadJob::State::Finished) return std::nullopt;
        if (state == LoadJob::State::Opened) { // the old contents go before the new ones take memory
            clearEngine();
            job.proceed();
        }
        if (state == LoadJob::State::Asking) discuss(job, question);
        if (!parts_.delegate.loadProgress(job.progress(), "", "") && !cancelledAt) {
            job.cancel();
            cancelledAt = Clock::now();
        }
        if (cancelledAt && Clock::now() - *cancelledAt > cancelTimeout) return LoadProblem::Kind::Cancelled;
        if (job.hangs()) return LoadProblem::Kind::NoAnswer;
    }
}

void LoadRunner::clearEngine() {
    const juce::ScopedLock hold(contentsLock_);
    parts_.engine.clear();
    isCleared_ = true;
}

bool LoadRunner::mayAsk() const {
    return parts_.editor.window() != nullptr && !parts_.controller.declinesQuestions();
}

// One step: the user may take any time. A question goes with the window that showed it, and the next window
// asks again.
void LoadRunner::discuss(LoadJob& job, std::unique_ptr<FolderQuestion>& question) {
    std::optional<std::string> answer = std::string();
    if (question && question->windowNumber() != parts_.editor.windowNumber()) question.reset();
    if (mayAsk()) {
        if (!question)
            question = std::make_unique<FolderQuestion>(parts_.editor, job.question(), missingFolder());
        answer = question->answer();
    }
    if (!answer) return juce::Thread::sleep(static_cast<int>(pollMs));
    question.reset();
    if (!answer->empty()) parts_.settings.set(settingKey::missingFolder, fromUtf8(*answer));
    job.answer(*answer);
}

// A folder that does not answer would hang the dialog that starts in it.
juce::File LoadRunner::missingFolder() const {
    const auto folder = parts_.settings.get(settingKey::missingFolder);
    const bool answers = juce::File::isAbsolutePath(folder) &&
                         runWithTimeout(limits::hungReadMs,
                                        [path = folder.toStdString()](const SignOfLife&) { isFolder(path); });
    return answers ? juce::File(folder) : defaultSampleFolder();
}

LoadRunner::Report LoadRunner::report() const {
    const juce::ScopedLock hold(reportLock_);
    return report_;
}

bool LoadRunner::takeUnaskedQuestion() {
    const juce::ScopedLock hold(reportLock_);
    return std::exchange(hasUnaskedQuestion_, false);
}

// Only copies under the callback lock: the next render computes what derives from them.
void LoadRunner::applyState(std::span<const std::uint8_t> tail) {
    if (tail.empty()) return;
    ZInstrument& engine = parts_.engine;
    const juce::ScopedLock holdContents(contentsLock_);
    const auto state = decodeTail(tail, engine.groups().size());
    const ZInstrument::Hurry hurry(engine); // a bounce that waits for the disk holds the callback lock
    const juce::ScopedLock holdCallback(parts_.processor.getCallbackLock());
    if (state.settings) takeRestoredFields(engine.settings(), *state.settings);
    if (state.settings) engine.requestApplySettings();
    for (std::size_t i = 0; i < state.groups.size(); ++i) {
        copyGroup(engine.groups()[i]->record, state.groups[i]);
        engine.prepareZones(*engine.groups()[i]);
    }
    if (state.currentGroup) makeOnlyActiveGroup(*state.currentGroup);
}

void LoadRunner::makeOnlyActiveGroup(std::int32_t index) {
    ZInstrument& engine = parts_.engine;
    engine.deactivateAllGroups();
    if (index < 0) return;
    engine.activateGroup(engine.groups()[static_cast<std::size_t>(index)].get());
    parts_.delegate.groupsChanged();
}

} // namespace zarno

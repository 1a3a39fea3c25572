// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/load/InstrumentLoader.h"
#include "engine/InstrumentContents.h"
#include "engine/ZSEDelegate.h"
#include "platform/WorkerThread.h"
#include "shell/SampleSearch.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace zarno {

/// One load on a reader thread, which touches nothing but this object. The owner polls it and may abandon it,
/// so a read that never returns blocks only the reader; the object and the module then stay in memory.
class LoadJob final : private ZSEDelegate {
  public:
    struct Request {
        std::string path; ///< of the instrument file, native form
        std::string licenceText;
        SampleSearch::Places places;
        SampleSearch::Limits limits;
        /// No host thread waits for this load: it reads at the lowest priority and may ask for missing
        /// samples.
        bool background = false;
    };
    /// Null when the system starts no thread.
    static std::shared_ptr<LoadJob> start(Request request);

    enum class State {
        Reading,
        Opened, ///< the file is open: the reader waits for proceed, after the owner has cleared the old
                ///< contents
        Asking, ///< a sample was not found: the reader waits for answer
        Finished
    };
    /// [owner] The state; waits at most `timeoutMs` for one other than Reading.
    State wait(unsigned timeoutMs);
    void proceed();
    /// In state Asking: the name of the sample.
    std::string question();
    /// The folder to search, for this and all further missing samples. An empty one ends the questions of
    /// this load.
    void answer(const std::string& folder);
    /// [any] The reader ends at its next check.
    void cancel();
    float progress() const { return progress_.load(std::memory_order_relaxed); }
    /// [owner] The reader has been in one read for limits::stalledDiskMs.
    bool hangs() const;

    /// [owner, Finished] Waits for the thread to end. After it, result and contents belong to the owner.
    void join() { thread_.join(); }
    LoadResult& result() { return result_; }
    InstrumentContents& contents() { return contents_; }

    /// Gives up a reader that does not end. It keeps the job; the caller must not use it again.
    static void abandon(std::shared_ptr<LoadJob> job);

    /// Use start.
    explicit LoadJob(Request request);

  private:
    void read();
    void waitForPermission();
    std::string ask(const std::string& missingPath);
    bool shouldContinue();

    bool loadProgress(float fraction, const char* groupName, const char* sampleName) override;
    void groupsChanged() override {}
    void reportMessage(const char* text, char* reply) override;
    void settingsChanged() override {}
    void requestLicenceText(char*) override {}

    const Request request_;
    SampleSearch search_;
    LoadResult result_;
    InstrumentContents contents_;
    std::atomic<float> progress_{-1.0f};
    std::atomic<bool> cancelled_{false};
    std::atomic<std::uint64_t> signsOfLife_{0};
    std::uint64_t signsSeen_ = 0; // this and the next: used by the owner alone
    std::chrono::steady_clock::time_point aliveAt_ = std::chrono::steady_clock::now();
    std::mutex lock_;
    std::condition_variable changed_;
    State state_ = State::Reading; // this and the next two are guarded by lock_
    std::string question_, answer_;
    bool asks_ = request_.background; // used by the reader alone
    WorkerThread thread_;
};

} // namespace zarno

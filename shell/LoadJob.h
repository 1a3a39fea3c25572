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

/// One load, on a thread of its own that touches nothing but this object. Whoever started it waits in small
/// steps and may leave it behind: a read that the system does not give back then hangs nobody, and the object
/// and the module stay until it does.
class LoadJob final : private ZSEDelegate {
  public:
    struct Request {
        std::string path; ///< of the instrument file, native form
        std::string licenceText;
        SampleSearch::Places places;
        SampleSearch::Limits limits;
        /// Nobody is held up by this load: it runs at the lowest priority and may ask where samples are.
        bool background = false;
    };
    /// Null when the system has no thread left.
    static std::shared_ptr<LoadJob> start(Request request);

    enum class State {
        Reading,
        Opened, ///< the file is open: the reader waits for proceed, so that the old contents can go first
        Asking, ///< a sample is nowhere to be found: the reader waits for answer
        Finished
    };
    /// The state, after at most `timeoutMs` if it stays Reading.
    State wait(unsigned timeoutMs);
    void proceed();
    /// In state Asking: the name of the sample.
    std::string question();
    /// The folder to look into, also for what else is missing. An empty one ends the questions of this load.
    void answer(const std::string& folder);
    /// The reader gives up at its next look.
    void cancel();
    float progress() const { return progress_.load(std::memory_order_relaxed); }
    /// For who calls wait: it has found the reader in the same read for limits::stalledDiskMs.
    bool hangs() const;

    /// In state Finished: waits for the thread's end. Then result and contents are the caller's.
    void join() { thread_.join(); }
    LoadResult& result() { return result_; }
    InstrumentContents& contents() { return contents_; }

    /// Leaves the reader behind, whatever it does. The job is not to be touched afterwards.
    static void abandon(std::shared_ptr<LoadJob> job);

    /// Use start.
    explicit LoadJob(Request request);

  private:
    void read();
    void waitForPermission();
    std::string ask(const std::string& missingPath);
    bool goOn();

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
    std::uint64_t signsSeen_ = 0; // this and the next of who calls wait
    std::chrono::steady_clock::time_point aliveAt_ = std::chrono::steady_clock::now();
    std::mutex lock_;
    std::condition_variable changed_;
    State state_ = State::Reading; // this and the next two are guarded by lock_
    std::string question_, answer_;
    bool asks_ = request_.background; // of the reader alone
    WorkerThread thread_;
};

} // namespace zarno

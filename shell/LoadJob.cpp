// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LoadJob.h"

#include "data/Limits.h"
#include "platform/Module.h"
#include "platform/Paths.h"
#include "platform/ThreadRole.h"

#include <cstring>

namespace zarno {

LoadJob::LoadJob(Request request)
    : request_(std::move(request))
    , search_(request_.places, request_.limits, [this] { return shouldContinue(); }) {}

std::shared_ptr<LoadJob> LoadJob::start(Request request) {
    auto job = std::make_shared<LoadJob>(std::move(request));
    // The thread holds a raw pointer: the caller joins it, or abandon keeps the job.
    using Priority = WorkerThread::Priority;
    const auto priority = job->request_.background ? Priority::lowest : Priority::normal;
    const bool started = job->thread_.start(
        "ZSP Reader", [raw = job.get()] { raw->read(); }, priority);
    return started ? job : nullptr;
}

void LoadJob::read() {
    const thread::Acts asReader(thread::reader);
    LoadOptions options;
    options.enteredText = request_.licenceText;
    options.delegate = this;
    options.opened = [this] { waitForPermission(); };
    options.alive = [this] { shouldContinue(); };
    result_ = readInstrument(contents_, request_.path, options);
    const std::lock_guard hold(lock_);
    state_ = State::Finished;
    changed_.notify_all();
}

void LoadJob::waitForPermission() {
    std::unique_lock hold(lock_);
    state_ = State::Opened;
    changed_.notify_all();
    changed_.wait(hold, [this] { return state_ != State::Opened || !shouldContinue(); });
    state_ = State::Reading;
}

LoadJob::State LoadJob::wait(unsigned timeoutMs) {
    std::unique_lock hold(lock_);
    changed_.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                      [this] { return state_ != State::Reading; });
    const std::uint64_t signs = signsOfLife_.load(std::memory_order_relaxed);
    if (state_ != State::Reading || signs != signsSeen_) aliveAt_ = std::chrono::steady_clock::now();
    signsSeen_ = signs;
    return state_;
}

bool LoadJob::hangs() const {
    const std::chrono::duration<double, std::milli> silence = std::chrono::steady_clock::now() - aliveAt_;
    return silence.count() > limits::stalledDiskMs;
}

// Called after each answer of the system.
bool LoadJob::shouldContinue() {
    signsOfLife_.fetch_add(1, std::memory_order_relaxed);
    return !cancelled_.load(std::memory_order_relaxed);
}

void LoadJob::proceed() {
    const std::lock_guard hold(lock_);
    if (state_ == State::Opened) state_ = State::Reading;
    changed_.notify_all();
}

std::string LoadJob::question() {
    const std::lock_guard hold(lock_);
    return question_;
}

void LoadJob::answer(const std::string& folder) {
    const std::lock_guard hold(lock_);
    answer_ = folder;
    if (state_ == State::Asking) state_ = State::Reading;
    changed_.notify_all();
}

// After one cancelled question the load asks no more.
std::string LoadJob::ask(const std::string& missingPath) {
    std::string folder;
    {
        std::unique_lock hold(lock_);
        question_ = fileName(missingPath);
        answer_.clear();
        state_ = State::Asking;
        changed_.notify_all();
        changed_.wait(hold, [this] { return state_ != State::Asking || !shouldContinue(); });
        state_ = State::Reading;
        folder = answer_;
    }
    asks_ = !folder.empty();
    if (!asks_) return {};
    search_.choose(folder);
    return search_.find(missingPath);
}

void LoadJob::cancel() {
    const std::lock_guard hold(lock_);
    cancelled_ = true;
    changed_.notify_all();
}

void LoadJob::abandon(std::shared_ptr<LoadJob> job) {
    keepModuleForever();
    job->thread_.detach();
    // Never freed: the reader may return from its read at any time.
    static std::mutex lock;
    static auto& abandoned = *new std::vector<std::shared_ptr<LoadJob>>;
    const std::lock_guard hold(lock);
    abandoned.push_back(std::move(job));
}

bool LoadJob::loadProgress(float fraction, const char*, const char*) {
    progress_.store(fraction, std::memory_order_relaxed);
    return shouldContinue();
}

void LoadJob::reportMessage(const char* text, char* reply) {
    std::string found = search_.find(text);
    if (found.empty() && asks_) found = ask(text);
    if (found.size() < replyBytes) std::memcpy(reply, found.c_str(), found.size() + 1);
}

} // namespace zarno

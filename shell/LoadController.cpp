// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LoadController.h"

#include "shell/HostChunk.h"

#include <utility>

namespace zarno {

void LoadController::name(const std::string& path, int index) {
    if (path != currentPath_) receivedChunk_.clear(); // the project's wish ends with another choice
    currentPath_ = path;
    currentIndex_ = index;
}

// Turns the current path into a running request in the background.
bool LoadController::begin(std::vector<std::uint8_t> pendingState) {
    running_ = {currentPath_, currentIndex_, receivedChunk_, std::move(pendingState), true};
    runningTicket_ = 0;
    if (!receivedChunk_.empty()) {
        const auto tail = splitChunk(receivedChunk_).tail;
        running_.pendingState.assign(tail.begin(), tail.end());
    }
    state_ = State::Loading;
    return true;
}

bool LoadController::select(const std::string& path, int index) {
    const std::lock_guard hold(lock_);
    if (path.empty() || state_ == State::Closed) return false;
    const bool isThere = path == currentPath_ && path == loadedPath_;
    name(path, index);
    return !isBusy() && !isThere && begin({});
}

bool LoadController::reload(std::vector<std::uint8_t> liveState) {
    const std::lock_guard hold(lock_);
    return !isBusy() && !currentPath_.empty() && begin(std::move(liveState));
}

bool LoadController::replaceMissing(const std::string& path, int index) {
    const std::lock_guard hold(lock_);
    if (isBusy() || path.empty()) return false;
    currentPath_ = path;
    currentIndex_ = index;
    return begin({});
}

bool LoadController::restore(LoadRequest request) {
    std::unique_lock hold(lock_);
    if (request.path.empty() || state_ == State::Closed) return false;
    request.inBackground = false;
    name(request.path, request.index);
    receivedChunk_ = request.receivedChunk;
    const std::uint64_t ticket = ++lastTicket_;
    if (state_ == State::Idle) {
        running_ = std::move(request);
        state_ = State::Loading;
        return true;
    }
    waiting_ = std::move(request); // a restore that waited before gives up
    waitingTicket_ = ticket;
    state_ = State::RestoreWaits;
    changed_.notify_all();
    changed_.wait(hold, [&] { return waitingTicket_ != ticket; });
    return runningTicket_ == ticket;
}

void LoadController::finish(bool succeeded, bool cleared) {
    const std::lock_guard hold(lock_);
    lastLoadSucceeded_ = succeeded;
    if (succeeded)
        loadedPath_ = running_.path;
    else if (cleared)
        loadedPath_.clear();
    // A chunk that arrived during this load belongs to a request of its own.
    const bool isOwnChunk = waitingTicket_ == 0 && currentPath_ == running_.path;
    if (succeeded && isOwnChunk) receivedChunk_.clear();
    running_ = std::exchange(waiting_, {});
    runningTicket_ = std::exchange(waitingTicket_, 0);
    if (state_ == State::Loading) state_ = State::Idle;
    if (state_ == State::RestoreWaits) state_ = State::Loading;
    changed_.notify_all();
}

void LoadController::close() {
    const std::lock_guard hold(lock_);
    state_ = State::Closed;
    waiting_ = {};
    waitingTicket_ = 0;
    changed_.notify_all();
}

LoadController::State LoadController::state() const {
    const std::lock_guard hold(lock_);
    return state_;
}

bool LoadController::isLoading() const {
    const State now = state();
    return now == State::Loading || now == State::RestoreWaits;
}

bool LoadController::declinesQuestions() const {
    return state() != State::Loading;
}

LoadController::Current LoadController::current() const {
    const std::lock_guard hold(lock_);
    return {currentPath_, currentIndex_};
}

bool LoadController::isCurrentLoaded() const {
    const std::lock_guard hold(lock_);
    return state_ == State::Idle && !currentPath_.empty() && currentPath_ == loadedPath_;
}

bool LoadController::lastLoadSucceeded() const {
    const std::lock_guard hold(lock_);
    return lastLoadSucceeded_;
}

LoadController::Saved LoadController::saved() const {
    const std::lock_guard hold(lock_);
    return {receivedChunk_, currentPath_, isBusy()};
}

} // namespace zarno

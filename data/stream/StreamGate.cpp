// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/StreamGate.h"

#include "platform/ThreadRole.h"

namespace zarno {

StreamGate::Visit::Visit(StreamGate& gate)
    : gate_(gate) {
    thread::mustBe(thread::disk);
    const std::lock_guard hold(gate_.mutex_);
    inside_ = !gate_.isClosed() && gate_.visit_ == nullptr;
    if (inside_) gate_.visit_ = this;
}

StreamGate::Visit::~Visit() {
    const std::lock_guard hold(gate_.mutex_);
    if (gate_.visit_ != this) return;
    gate_.visit_ = nullptr;
    gate_.changed_.notify_all();
}

void StreamGate::Visit::beginRead() {
    const std::lock_guard hold(gate_.mutex_);
    reading_ = true;
    gate_.reading_.store(true, std::memory_order_relaxed);
    gate_.changed_.notify_all();
}

bool StreamGate::Visit::endRead() {
    const std::lock_guard hold(gate_.mutex_);
    reading_ = false;
    if (gate_.visit_ == this) gate_.reading_.store(false, std::memory_order_relaxed);
    return !leftBehind_;
}

void StreamGate::close(Patience patience) {
    thread::mustNotBe(thread::audio | thread::disk);
    closings_.fetch_add(1, std::memory_order_acq_rel);
    const auto end = std::chrono::steady_clock::now() + patience;
    std::unique_lock hold(mutex_);
    while (visit_ != nullptr && !visit_->leftBehind_) {
        if (!visit_->reading_)
            changed_.wait(hold); // at work in memory: soon done
        else if (changed_.wait_until(hold, end) == std::cv_status::timeout && visit_ != nullptr)
            visit_->leftBehind_ = visit_->reading_;
    }
    changed_.notify_all(); // others who close
}

void StreamGate::forgetVisitor() {
    thread::mustBe(thread::loading);
    const std::lock_guard hold(mutex_);
    if (visit_ != nullptr) visit_->leftBehind_ = true;
    visit_ = nullptr;
    reading_.store(false, std::memory_order_relaxed);
}

} // namespace zarno

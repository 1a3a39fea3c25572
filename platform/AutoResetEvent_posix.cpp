// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/AutoResetEvent.h"

#include <atomic>
#include <cerrno>
#include <ctime>
#include <new>
#include <semaphore.h>

namespace zarno {

// A semaphore that is never posted twice: the flag is set from the first signal until a waiter has taken it.
// Clearing the flag after the wait is what folds later signals into this one, and its acquire order is what
// lets the waiter see what the signalling thread wrote.
struct AutoResetEvent::Impl {
    sem_t semaphore;
    std::atomic<bool> signalled{false};

    Impl() {
        if (::sem_init(&semaphore, 0, 0) != 0) throw std::bad_alloc();
    }
    ~Impl() { ::sem_destroy(&semaphore); }
    void take() { signalled.exchange(false, std::memory_order_acq_rel); }
};

AutoResetEvent::AutoResetEvent(const char*)
    : impl_(std::make_unique<Impl>()) {}
AutoResetEvent::~AutoResetEvent() = default;

void AutoResetEvent::signal() noexcept {
    if (!impl_->signalled.exchange(true, std::memory_order_acq_rel)) ::sem_post(&impl_->semaphore);
}

void AutoResetEvent::wait() noexcept {
    while (::sem_wait(&impl_->semaphore) != 0 && errno == EINTR) {
    }
    impl_->take();
}

bool AutoResetEvent::wait(unsigned timeoutMs) noexcept {
    if (timeoutMs == 0) { // a wait that has timed out already still sleeps for the timer's slack
        if (::sem_trywait(&impl_->semaphore) != 0) return false;
        impl_->take();
        return true;
    }
    timespec until{};
    ::clock_gettime(CLOCK_MONOTONIC, &until);
    until.tv_sec += timeoutMs / 1000;
    until.tv_nsec += static_cast<long>(timeoutMs % 1000) * 1'000'000;
    if (until.tv_nsec >= 1'000'000'000) {
        until.tv_nsec -= 1'000'000'000;
        ++until.tv_sec;
    }
    while (::sem_clockwait(&impl_->semaphore, CLOCK_MONOTONIC, &until) != 0) {
        if (errno != EINTR) return false;
    }
    impl_->take();
    return true;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/AutoResetEvent.h"

#include <new>

#include <windows.h>

namespace zarno {

struct AutoResetEvent::Impl {
    HANDLE event;

    explicit Impl(const char* name)
        : event(CreateEventA(nullptr, FALSE, FALSE, name)) {
        if (event == nullptr) throw std::bad_alloc();
    }
    ~Impl() { CloseHandle(event); }
};

AutoResetEvent::AutoResetEvent(const char* name)
    : impl_(std::make_unique<Impl>(name)) {}
AutoResetEvent::~AutoResetEvent() = default;

void AutoResetEvent::signal() noexcept {
    SetEvent(impl_->event);
}
void AutoResetEvent::wait() noexcept {
    WaitForSingleObject(impl_->event, INFINITE);
}

bool AutoResetEvent::wait(unsigned timeoutMs) noexcept {
    const DWORD limit = timeoutMs == INFINITE ? INFINITE - 1 : timeoutMs;
    return WaitForSingleObject(impl_->event, limit) == WAIT_OBJECT_0;
}

} // namespace zarno

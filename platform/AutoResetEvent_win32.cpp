// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/AutoResetEvent.h"

#include <new>
#include <string>

#include <windows.h>

namespace zarno {
namespace {

const char anchor = 0; // an address inside this module

HANDLE createEvent(const char* name) {
    if (name == nullptr) return CreateEventA(nullptr, FALSE, FALSE, nullptr);
    const std::string unique = std::string(name) + " " + std::to_string(GetCurrentProcessId()) + " " +
                               std::to_string(reinterpret_cast<std::uintptr_t>(&anchor));
    return CreateEventA(nullptr, FALSE, FALSE, unique.c_str());
}

} // namespace

struct AutoResetEvent::Impl {
    HANDLE event;

    explicit Impl(const char* name)
        : event(createEvent(name)) {
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

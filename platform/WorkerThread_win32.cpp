// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/WorkerThread.h"

#include "platform/WideText_win32.h"

#include <process.h>
#include <utility>

#include <windows.h>

namespace zarno {
namespace {

struct Start {
    std::string name;
    std::function<void()> body;
};

// Windows before 10 version 1607 does not have the call, so the import table must not name it.
void nameThisThread(const std::string& name) {
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const auto address = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription");
    const auto setDescription = reinterpret_cast<SetDescription>(reinterpret_cast<void*>(address));
    if (setDescription != nullptr) setDescription(GetCurrentThread(), wideText(name).c_str());
}

unsigned __stdcall run(void* argument) {
    const std::unique_ptr<Start> start(static_cast<Start*>(argument));
    nameThisThread(start->name);
    start->body();
    return 0;
}

} // namespace

struct WorkerThread::Impl {
    HANDLE thread = nullptr;
};

WorkerThread::WorkerThread()
    : impl_(std::make_unique<Impl>()) {}
WorkerThread::~WorkerThread() {
    join();
}

bool WorkerThread::start(const std::string& name, std::function<void()> body, Priority priority) {
    join();
    auto start = std::make_unique<Start>(Start{name, std::move(body)});
    const auto handle = _beginthreadex(nullptr, 0, run, start.get(), CREATE_SUSPENDED, nullptr);
    if (handle == 0) return false;
    start.release(); // the thread owns it now
    impl_->thread = reinterpret_cast<HANDLE>(handle);
    if (priority == Priority::lowest) SetThreadPriority(impl_->thread, THREAD_PRIORITY_IDLE);
    ResumeThread(impl_->thread);
    return true;
}

void WorkerThread::join() {
    if (!isStarted()) return;
    WaitForSingleObject(impl_->thread, INFINITE);
    CloseHandle(impl_->thread);
    impl_->thread = nullptr;
}

void WorkerThread::detach() {
    if (isStarted()) CloseHandle(impl_->thread);
    impl_->thread = nullptr;
}

bool WorkerThread::isStarted() const {
    return impl_->thread != nullptr;
}

} // namespace zarno

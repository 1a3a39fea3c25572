// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/WorkerThread.h"

#include <pthread.h>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace zarno {
namespace {

void describeThisThread(const std::string& name, WorkerThread::Priority priority) {
    ::pthread_setname_np(::pthread_self(), name.substr(0, 15).c_str());
    // On Linux a nice value belongs to one thread. Not SCHED_IDLE, which a busy machine may never run.
    if (priority == WorkerThread::Priority::lowest)
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), 19);
}

} // namespace

struct WorkerThread::Impl {
    std::thread thread;
};

WorkerThread::WorkerThread()
    : impl_(std::make_unique<Impl>()) {}
WorkerThread::~WorkerThread() {
    join();
}

bool WorkerThread::start(const std::string& name, std::function<void()> body, Priority priority) {
    join();
    try {
        impl_->thread = std::thread([name, priority, body = std::move(body)] {
            describeThisThread(name, priority);
            body();
        });
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void WorkerThread::join() {
    if (isStarted()) impl_->thread.join();
}

void WorkerThread::detach() {
    if (isStarted()) impl_->thread.detach();
}

bool WorkerThread::isStarted() const {
    return impl_->thread.joinable();
}

} // namespace zarno

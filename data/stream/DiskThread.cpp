// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/DiskThread.h"

#include "platform/ThreadRole.h"
#include "platform/WorkerThread.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace zarno {
namespace {

class Runner {
  public:
    Runner() {
        thread_.start("ZSE Disk Thread", [this] { run(); });
    }
    ~Runner() {
        stop_.store(true, std::memory_order_release);
        event.signal();
        thread_.join();
    }

    void add(ZSEThreadClient& client);
    void remove(ZSEThreadClient& client);

    AutoResetEvent event{"ZSE Disk Thread Event"};

  private:
    void run();
    ZSEThreadClient* enterClient(std::size_t index);

    std::mutex mutex_; // for the next three
    std::vector<ZSEThreadClient*> clients_;
    ZSEThreadClient* inside_ = nullptr; // the client being served
    std::condition_variable left_;

    std::atomic<bool> stop_{false};
    WorkerThread thread_; // last: it uses the others
};

void Runner::add(ZSEThreadClient& client) {
    const std::lock_guard lock(mutex_);
    clients_.push_back(&client);
}

void Runner::remove(ZSEThreadClient& client) {
    std::unique_lock lock(mutex_);
    std::erase(clients_, &client);
    left_.wait(lock, [&] { return inside_ != &client; });
    // The pass at hand may have missed the client that moved up: another one.
    event.signal();
}

// Leaves the client served before. The mutex is not held while a client is served: others come and go then.
ZSEThreadClient* Runner::enterClient(std::size_t index) {
    const std::lock_guard lock(mutex_);
    inside_ = index < clients_.size() ? clients_[index] : nullptr;
    left_.notify_all();
    return inside_;
}

void Runner::run() {
    const thread::Acts asDisk(thread::disk);
    for (;;) {
        event.wait();
        if (stop_.load(std::memory_order_acquire)) return;
        for (std::size_t i = 0; ZSEThreadClient* client = enterClient(i); ++i)
            client->serviceStreams();
    }
}

// Held while the thread starts or stops, so that there is never a second one. Plain pointer and count: no
// destructor runs when the module goes, and none is needed.
std::mutex sharesMutex;
int shares = 0;
Runner* runner = nullptr;

AutoResetEvent& takeShare() {
    thread::mustNotBe(thread::audio | thread::disk);
    const std::lock_guard lock(sharesMutex);
    if (runner == nullptr) runner = new Runner;
    ++shares;
    return runner->event;
}

} // namespace

DiskThread::DiskThread()
    : event_(takeShare()) {}

DiskThread::~DiskThread() {
    thread::mustNotBe(thread::audio | thread::disk);
    const std::lock_guard lock(sharesMutex);
    if (--shares > 0) return;
    delete runner;
    runner = nullptr;
}

void DiskThread::add(ZSEThreadClient& client) {
    runner->add(client);
}

void DiskThread::remove(ZSEThreadClient& client) {
    runner->remove(client);
}

} // namespace zarno

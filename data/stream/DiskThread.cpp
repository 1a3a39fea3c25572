// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/DiskThread.h"

#include "data/Limits.h"
#include "platform/Module.h"
#include "platform/ThreadRole.h"
#include "platform/WorkerThread.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace zarno {
namespace {

std::atomic<std::uint64_t> readsDone{0};

// In so many looks without a sign of life a thread counts as hung. Counted in looks, since a machine that
// wakes up finds any amount of time gone by.
constexpr int looks = 4;
constexpr std::chrono::milliseconds betweenLooks(static_cast<int>(limits::hungReadMs) / looks);

// The disk thread, and a watcher that puts another one in its place when it hangs. A thread that was left
// behind shares this object.
class Runner : public std::enable_shared_from_this<Runner> {
  public:
    void start();
    void stop();

    void add(std::shared_ptr<ZSEThreadClient> client);
    void remove(const ZSEThreadClient& client);

    AutoResetEvent event{"ZSE Disk Thread Event"};

  private:
    struct Worker {
        WorkerThread thread;
        std::shared_ptr<ZSEThreadClient> inside; // the client being served
        std::uint64_t entered = 0;               // clients so far
    };

    void startWorker();
    void serveAll(const std::shared_ptr<Worker>& self);
    std::shared_ptr<ZSEThreadClient> enterClient(Worker& self, std::size_t index);
    bool isOver(const Worker& self);
    void watch();
    void watchWhileInside(std::unique_lock<std::mutex>& hold);
    std::uint64_t signsOfLife() const { return readsDone + worker_->entered; }
    void replaceWorker();

    std::mutex mutex_; // for all below; not held while a client is served
    std::vector<std::shared_ptr<ZSEThreadClient>> clients_;
    std::shared_ptr<Worker> worker_;
    bool stop_ = false, watcherSleeps_ = false;
    std::condition_variable watcherWakes_;
    WorkerThread watcher_;
};

void Runner::start() {
    const std::lock_guard hold(mutex_);
    startWorker();
    watcher_.start("ZSE Disk Watch", [this] { watch(); });
}

// The watcher goes when there is nobody left to wait for.
void Runner::stop() {
    {
        const std::lock_guard hold(mutex_);
        stop_ = true;
        watcherWakes_.notify_one();
    }
    event.signal();
    watcher_.join();
    worker_->thread.join();
}

void Runner::add(std::shared_ptr<ZSEThreadClient> client) {
    const std::lock_guard hold(mutex_);
    clients_.push_back(std::move(client));
}

void Runner::remove(const ZSEThreadClient& client) {
    const std::lock_guard hold(mutex_);
    std::erase_if(clients_, [&](const auto& one) { return one.get() == &client; });
    // The pass at hand may have missed the client that moved up: another one.
    event.signal();
}

void Runner::startWorker() {
    worker_ = std::make_shared<Worker>();
    worker_->thread.start("ZSE Disk Thread",
                          [keep = shared_from_this(), self = worker_] { keep->serveAll(self); });
}

void Runner::serveAll(const std::shared_ptr<Worker>& self) {
    const thread::Acts asDisk(thread::disk);
    while (!isOver(*self)) {
        event.wait();
        for (std::size_t i = 0; const auto client = enterClient(*self, i); ++i)
            client->serviceStreams();
    }
    // Its successor has left out the client in which it hung.
    event.signal();
}

bool Runner::isOver(const Worker& self) {
    const std::lock_guard hold(mutex_);
    return stop_ || worker_.get() != &self;
}

// Leaves the client served before.
std::shared_ptr<ZSEThreadClient> Runner::enterClient(Worker& self, std::size_t index) {
    std::shared_ptr<ZSEThreadClient> former; // let go of without the lock
    const std::lock_guard hold(mutex_);
    former = std::move(self.inside);
    const bool mayGoOn = !stop_ && worker_.get() == &self && index < clients_.size();
    self.inside = mayGoOn ? clients_[index] : nullptr;
    ++self.entered;
    if (stop_ || (self.inside && watcherSleeps_)) watcherWakes_.notify_one();
    return self.inside;
}

void Runner::watch() {
    std::unique_lock hold(mutex_);
    while (!stop_ || worker_->inside) {
        watcherSleeps_ = true;
        watcherWakes_.wait(hold, [this] { return stop_ || worker_->inside; });
        watcherSleeps_ = false;
        watchWhileInside(hold);
    }
}

void Runner::watchWhileInside(std::unique_lock<std::mutex>& hold) {
    for (int inVain = 0; worker_->inside && inVain < looks;) {
        const std::uint64_t seen = signsOfLife();
        watcherWakes_.wait_for(hold, betweenLooks, [this] { return !worker_->inside; });
        inVain = signsOfLife() == seen ? inVain + 1 : 0;
    }
    if (worker_->inside) replaceWorker();
}

void Runner::replaceWorker() {
    keepModuleForever();
    worker_->thread.detach();
    if (stop_)
        worker_ = std::make_shared<Worker>();
    else
        startWorker();
    event.signal();
}

// Held while the thread starts or stops, so that there is never a second one. Plain pointers and count: no
// destructor runs when the module goes, and none is needed.
std::mutex sharesMutex;
int shares = 0;
std::shared_ptr<Runner>* runner = nullptr;

AutoResetEvent& takeShare() {
    thread::mustNotBe(thread::audio | thread::disk);
    const std::lock_guard lock(sharesMutex);
    if (runner == nullptr) {
        runner = new std::shared_ptr<Runner>(std::make_shared<Runner>());
        (*runner)->start();
    }
    ++shares;
    return (*runner)->event;
}

} // namespace

DiskThread::DiskThread()
    : event_(takeShare()) {}

DiskThread::~DiskThread() {
    thread::mustNotBe(thread::audio | thread::disk);
    const std::lock_guard lock(sharesMutex);
    if (--shares > 0) return;
    (*runner)->stop();
    delete runner;
    runner = nullptr;
}

void DiskThread::add(std::shared_ptr<ZSEThreadClient> client) {
    (*runner)->add(std::move(client));
}

void DiskThread::remove(const ZSEThreadClient& client) {
    (*runner)->remove(client);
}

void DiskThread::countRead() {
    readsDone.fetch_add(1, std::memory_order_relaxed);
}

std::uint64_t DiskThread::reads() {
    return readsDone.load(std::memory_order_relaxed);
}

} // namespace zarno

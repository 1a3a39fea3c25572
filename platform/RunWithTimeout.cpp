// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/RunWithTimeout.h"

#include "platform/Module.h"
#include "platform/WorkerThread.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>

namespace zarno {
namespace {

struct Progress {
    std::mutex mutex;
    std::condition_variable changed;
    std::uint64_t signs = 0;
    bool done = false;

    void sign(bool isLast) {
        const std::lock_guard hold(mutex);
        ++signs;
        done = isLast;
        changed.notify_all();
    }
};

} // namespace

bool runWithTimeout(double timeoutMs, std::function<void(const SignOfLife& alive)> work) {
    const auto progress = std::make_shared<Progress>();
    const auto body = [progress, work = std::move(work)] {
        work([&] { progress->sign(false); });
        progress->sign(true);
    };
    WorkerThread thread;
    if (!thread.start("ZSP Timeout", body)) {
        body();
        return true;
    }
    const std::chrono::duration<double, std::milli> timeout(timeoutMs);
    std::unique_lock hold(progress->mutex);
    for (std::uint64_t seen = 0; !progress->done; seen = progress->signs)
        if (!progress->changed.wait_for(hold, timeout, [&] { return progress->signs != seen; })) {
            keepModuleForever();
            thread.detach();
            return false;
        }
    hold.unlock();
    thread.join();
    return true;
}

} // namespace zarno

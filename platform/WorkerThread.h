// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace zarno {

/// One thread that runs one function. How to stop early is the function's own business: set its flag, signal
/// its event, then join. After join the thread is gone from the system, so its module may be unloaded.
class WorkerThread {
  public:
    enum class Priority { normal, lowest };

    WorkerThread();
    ~WorkerThread(); ///< joins
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    /// Starts `body`, which must not throw; joins a former run first. `name` is what debuggers show (POSIX
    /// keeps its first 15 bytes). Returns false when the system cannot start a thread.
    bool start(const std::string& name, std::function<void()> body, Priority priority = Priority::normal);

    /// Waits for the end of the run, if there is one. Never called from the thread itself.
    void join();

    /// Lets go of a thread that may never end. Its module must stay in memory: see keepModuleForever.
    void detach();

    /// True from start until join or detach.
    bool isStarted() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace zarno

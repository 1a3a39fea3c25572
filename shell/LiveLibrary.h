// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/WorkerThread.h"
#include "shell/Library.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace zarno {

/// The library of a processor, which may be read again while it is in use.
class LiveLibrary {
  public:
    /// Reads `folders`; empty when the file system does not answer.
    explicit LiveLibrary(std::vector<std::string> folders);
    /// Abandons a scan that is still running.
    ~LiveLibrary();

    /// [any] What was read last. Entries keep their places while the caller holds it.
    std::shared_ptr<const Library> get() const;
    /// [any] Counts the readings that have found something else.
    std::uint32_t generation() const { return generation_; }
    const std::vector<std::string>& folders() const { return folders_; }

    /// [message] Reads the library on a thread of its own, unless that is under way. `onlyWhenChanged`: first looks
    /// whether any folder has been written to since.
    void refresh(bool onlyWhenChanged);
    /// [message] Takes over what a refresh has read, if it has ended.
    void takeUp();

  private:
    struct Reading;

    const std::vector<std::string> folders_;
    mutable std::mutex lock_; // guards library_
    std::shared_ptr<const Library> library_;
    std::atomic<std::uint32_t> generation_{0};
    std::shared_ptr<Reading> reading_; // null while none is under way; message thread
    std::uint64_t stamp_ = 0;          // of the folders at the last refresh
    WorkerThread thread_;
};

} // namespace zarno

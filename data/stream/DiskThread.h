// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/stream/ZSEThreadClient.h"
#include "platform/AutoResetEvent.h"

#include <cstdint>
#include <memory>

namespace zarno {

/// A share in the one disk thread of the process. The first share starts the thread; the last one stops it
/// and waits until it is gone, so that the module may be unloaded at once. Not for the audio thread, but for
/// event().
///
/// A thread whose read is not given back by the system holds up the other clients for no longer than
/// limits::hungReadMs: then another one takes its place, and it ends by itself should it ever come back. The
/// module stays in memory from then on.
class DiskThread {
  public:
    DiskThread();
    ~DiskThread();
    DiskThread(const DiskThread&) = delete;
    DiskThread& operator=(const DiskThread&) = delete;

    /// [any] Wakes the thread. Valid while this share lives, and while a client is served.
    AutoResetEvent& event() const { return event_; }

    /// The client is served from now on.
    void add(std::shared_ptr<ZSEThreadClient> client);
    /// The thread will not come back to the client, but may be in it for a moment, or for a hung read.
    void remove(const ZSEThreadClient& client);

    /// [disk] After each read, whatever came of it: this thread gets on.
    static void countRead();
    /// [any] All of them, of all clients.
    static std::uint64_t reads();

  private:
    AutoResetEvent& event_;
};

} // namespace zarno

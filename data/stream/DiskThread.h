// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/stream/ZSEThreadClient.h"
#include "platform/AutoResetEvent.h"

namespace zarno {

/// A share in the one disk thread of the process. The first share starts the thread; the last one stops it
/// and waits until it is gone, so that the module may be unloaded at once. Not for the audio thread, but for
/// event().
class DiskThread {
  public:
    DiskThread();
    ~DiskThread();
    DiskThread(const DiskThread&) = delete;
    DiskThread& operator=(const DiskThread&) = delete;

    /// [any] Wakes the thread. Valid while this share lives.
    AutoResetEvent& event() const { return event_; }

    /// The client is served from now on; it removes itself before it dies.
    void add(ZSEThreadClient& client);
    /// Returns when the thread is outside the client and will not come back.
    void remove(ZSEThreadClient& client);

  private:
    AutoResetEvent& event_;
};

} // namespace zarno

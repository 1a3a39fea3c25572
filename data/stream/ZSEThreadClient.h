// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

/// What the disk thread reaches an instrument through. It is shared with that thread, so that a read that
/// never returns finds it there whatever has become of the instrument.
class ZSEThreadClient {
  public:
    /// Disk thread: serves what the voices have asked for. Called each time the disk event fires, for every
    /// client in the order in which they were added.
    virtual void serviceStreams() = 0;

  protected:
    ~ZSEThreadClient() = default;
};

} // namespace zarno

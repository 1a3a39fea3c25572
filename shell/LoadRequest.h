// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zarno {

/// One wish for an instrument, with all that belongs to it. A load works on a request of its own, so that no
/// other request can change what it loads or applies.
struct LoadRequest {
    std::string path; ///< of the instrument file: full, native form, UTF-8
    int index = -1;   ///< in the library; -1 for a file that is not in it
    /// The chunk that the host wants restored, whole; empty when the user chose the instrument. Kept for
    /// saving until the instrument is loaded, so that a failed load loses nothing of the project.
    std::vector<std::uint8_t> receivedChunk;
    /// The tail of a chunk, applied after the load; empty: the values of the file stay.
    std::vector<std::uint8_t> pendingState;
    /// On the loading thread. Otherwise the thread that asks performs the load and waits for its end.
    bool inBackground = true;
};

} // namespace zarno

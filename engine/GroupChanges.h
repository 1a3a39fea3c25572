// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>

namespace zarno {

// Counts what changed in the groups of one instrument, so that the audio thread looks at their records again only
// then. Any thread counts; the audio thread compares.
struct GroupChanges {
    std::atomic<std::uint32_t> records{0}; // a group's record, see ZGroup::touch
    std::atomic<std::uint32_t> zones{0};   // a zone was added to a group
};

} // namespace zarno

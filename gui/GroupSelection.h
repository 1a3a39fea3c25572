// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace zarno {

class ZGroup;
class ZInstrument;

// Groups that are always on, or sound on release: the choice of another group leaves them on.
bool staysActive(const ZGroup& group);

// The groups that group knobs, combos and buttons act on: indices in instrument order, of one load. After
// another load they mean nothing, and the selection is empty until it follows the engine again.
class GroupSelection {
  public:
    // Takes the engine's active groups over. The caller keeps loads out.
    void follow(const ZInstrument& engine, std::uint32_t loadGeneration);

    // This group, and the active ones that stay active; with `toggle` it is added, or taken out when it was in. The
    // caller keeps loads out.
    void pick(const ZInstrument& engine, int group, bool toggle, std::uint32_t loadGeneration);

    // Empty when `loadGeneration` is not that of the load the indices belong to.
    const std::vector<int>& indices(std::uint32_t loadGeneration) const;
    bool contains(int group, std::uint32_t loadGeneration) const;

  private:
    std::vector<int> indices_;
    std::uint32_t generation_ = 0;
};

} // namespace zarno

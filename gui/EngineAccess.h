// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/PanelEdits.h"
#include "shell/EditorLink.h"

#include <functional>
#include <vector>

namespace zarno {

class GroupSelection;

// The window's way into the engine's contents. Another thread may have them for a moment (a host that saves
// the project): edits then wait here for the next flush, in order, instead of being lost. A load drops what
// waits, since it was meant for other contents. Message thread.
class EngineAccess {
  public:
    using Edit = std::function<void(PanelEdits&)>;

    EngineAccess(EditorLink& link, const GroupSelection& selection)
        : link_(link)
        , selection_(selection) {}

    // Does the edit now, or at the next flush that has the contents. Nothing during a load.
    void edit(Edit change);
    // Does what waits. False while there is still something.
    bool flush();

    // Calls `read` with the contents held. False, without a call, while another thread has them; waits for
    // them for at most `patienceMs`, and not at all during a load.
    template <typename Read>
    bool read(Read&& read, int patienceMs = 0) {
        for (;; --patienceMs) {
            const juce::ScopedTryLock contents(link_.contentsLock());
            if (contents.isLocked()) {
                read();
                return true;
            }
            if (patienceMs <= 0 || link_.isLoading()) return false;
            juce::Thread::sleep(1);
        }
    }

  private:
    EditorLink& link_;
    const GroupSelection& selection_;
    std::vector<Edit> waiting_;
    std::uint32_t waitingForLoad_ = 0; // the generation they were meant for
};

} // namespace zarno

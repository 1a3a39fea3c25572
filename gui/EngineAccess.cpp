// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/EngineAccess.h"

#include "gui/GroupSelection.h"

namespace zarno {

void EngineAccess::edit(Edit change) {
    if (link_.isLoading()) return;
    flush(); // drops what was meant for other contents
    waitingForLoad_ = link_.loadGeneration();
    waiting_.push_back(std::move(change));
    flush();
}

bool EngineAccess::flush() {
    if (link_.isLoading() || waitingForLoad_ != link_.loadGeneration()) waiting_.clear();
    return waiting_.empty() || read([this] {
        PanelEdits edits(link_.engine(), selection_.indices(link_.loadGeneration()));
        for (const auto& change : std::exchange(waiting_, {}))
            change(edits);
    });
}

} // namespace zarno

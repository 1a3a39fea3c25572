// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/InstrumentTexts.h"
#include "engine/Records.h"
#include "engine/ZGroup.h"

#include <memory>
#include <vector>

namespace zarno {

// All that an instrument file gives an instrument. It knows no ZInstrument, so it can be filled on a thread
// of its own and handed over when it is complete.
struct InstrumentContents {
    InstrumentSettings settings;
    InstrumentTexts texts;
    std::vector<std::unique_ptr<ZGroup>> groups;
};

// The values in an instrument's file, without the user's changes.
struct FileValues {
    InstrumentSettings settings;
    std::vector<GroupRecord> groups;
};

} // namespace zarno

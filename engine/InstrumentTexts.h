// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zarno {

// What an instrument file says besides its sound. Texts are UTF-8 when valid, else in the system's code page,
// as stored. The reader fills one that no other thread knows; an instrument's own changes on the loading thread.
struct InstrumentTexts {
    std::string name = "Untitled";        // shown to the user
    std::string title;                    // a library lists the file when neither name nor title is empty
    std::string path;                     // of the file, empty when nothing was loaded
    std::string remark;                   // a third text of the file; kept, read by nobody
    std::optional<std::string> layout;    // XML of the panel; none: no file brought one, the built-in layout
    std::vector<std::uint8_t> panelImage; // encoded picture; empty: the built-in one
    std::vector<std::string> licences;

    // Why and where (byte offset) reading stopped early; an empty reason: the file is complete.
    std::string incompleteReason;
    std::uint64_t incompleteAt = 0;
};

} // namespace zarno

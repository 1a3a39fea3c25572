// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/load/InstrumentFile.h"
#include "gui/DefaultLayout.h"

#include <functional>
#include <iosfwd>
#include <vector>

namespace zarno {

/// An instrument to be written: its structure, and for each sample block where the frames come from.
struct Model {
    Model() { file.layout.bytes = defaultLayout; } // as an instrument starts out

    InstrumentFile file;

    /// One for each of file.blocks. Writes exactly the block's dataBytes; throws MakerError when it cannot.
    std::vector<std::function<void(std::ostream&)>> frames;

    /// Waves that zones of external storage name and that are written beside the instrument file.
    struct Wave {
        std::string sample;                       ///< as zones name it
        std::function<void(std::ostream&)> write; ///< throws MakerError
    };
    std::vector<Wave> waves;

    std::vector<std::uint8_t> trailing; ///< what follows the instrument in its file
};

} // namespace zarno

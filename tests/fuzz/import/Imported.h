// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/ScratchFolder.h"
#include "tools/import/Importer.h"
#include "tools/zarno/MakerError.h"

namespace zarno::fuzz {

// Runs an import into the folder `out`: it makes instruments that load, or says what is wrong.
template <typename Import>
void importOrSayWhy(const std::string& out, Import import) {
    std::filesystem::create_directory(out);
    try {
        ImportReport report;
        import(ImportOptions{.out = out + "/x.zse", .embed = true}, report);
        for (const auto& made : std::filesystem::directory_iterator(out)) {
            ZInstrument instrument;
            require(bool(loadInstrument(instrument, made.path().string())), "what was imported loads");
            require(instrument.texts().incompleteReason.empty(), "and is whole");
        }
    } catch (const MakerError& error) {
        require(error.what()[0] != 0, "an error says what is wrong");
    }
    std::filesystem::remove_all(out);
}

} // namespace zarno::fuzz

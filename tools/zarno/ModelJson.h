// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/zarno/JsonObject.h"
#include "tools/zarno/Model.h"

#include <string>
#include <string_view>
#include <vector>

// The text form of an instrument: a folder with instrument.json, waves, and files for layout and panel image.
// docs/instrument-folder.md describes it.
namespace zarno {

inline constexpr std::string_view instrumentJsonName = "instrument.json";
inline constexpr std::string_view instrumentJsonFormat = "zarno-instrument";

/// Names of the files beside instrument.json, relative to it; empty where there is none.
struct FolderFiles {
    struct Sample {
        std::string file;
        bool raw = false; ///< the file holds the bare data: no wave can
    };
    std::string layout;
    std::string panel;
    std::vector<Sample> samples; ///< one for each sample block
};

Json modelToJson(const InstrumentFile& file, const FolderFiles& files,
                 const std::vector<std::uint8_t>& trailing);

struct PackOptions {
    bool embed = false; ///< waves of external storage go into the instrument file
};

/// Reads a folder (UTF-8). The model's frames are read from the folder's files when it is written. Samples of
/// external storage that are not there are added to `missing`. Throws MakerError.
Model readInstrumentFolder(const std::string& folder, const PackOptions& options,
                           std::vector<std::string>& missing);

} // namespace zarno

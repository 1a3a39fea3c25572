// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/zarno/JsonObject.h"
#include "tools/zarno/Model.h"

#include <functional>
#include <memory>
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
    std::string layoutSource; ///< the layout in its readable form; then `layout` is empty
    std::string panel;
    std::vector<Sample> samples; ///< one for each sample block
};

Json modelToJson(const InstrumentFile& file, const FolderFiles& files,
                 const std::vector<std::uint8_t>& trailing);

struct PackOptions {
    bool embed = false; ///< waves of external storage go into the instrument file
    /// Opens sound files that are no plain waves, and gives null for what it cannot read. None: they count as
    /// missing.
    std::function<std::unique_ptr<ZSoundFile>(const std::string& path)> decode = {};
};

/// What a maker should know about a folder that was read.
struct PackNotes {
    std::vector<std::string> missing; ///< samples of external storage that are not there
    std::vector<std::string> remarks; ///< sentences: what was converted, and how
};

/// Reads a folder (UTF-8). The model's frames and waves are read from the folder's files when it is written.
/// Throws MakerError, of several faults in instrument.json MakerErrors.
Model readInstrumentFolder(const std::string& folder, const PackOptions& options, PackNotes& notes);

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace zarno {

struct UnpackOptions {
    bool copySamples = false; ///< external waves are copied into the folder
    bool overwrite = false;   ///< an instrument.json that is there already is replaced
};

/// What an unpacked instrument lacks, for people; empty when nothing.
struct UnpackNotes {
    std::string incomplete;             ///< where and why the instrument file ends early
    std::vector<std::string> notCopied; ///< external samples that were not there, or lie outside the folder
};

/// Writes the instrument at `path` as a folder that packs to the same bytes. Both in UTF-8. Throws
/// MakerError.
UnpackNotes unpackInstrument(const std::string& path, const std::string& folder,
                             const UnpackOptions& options);

} // namespace zarno

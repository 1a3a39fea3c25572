// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/load/InstrumentFile.h"
#include "tools/zarno/JsonObject.h"

namespace zarno {

/// An instrument file and its samples, to be shown to people and programs.
struct InstrumentReport {
    struct Sample {
        std::string name;
        std::string path; ///< of an external sample
        bool found = false;
        std::int32_t sampleRate = 0;
        std::int32_t channels = 0;
        std::int32_t bytesPerSample = 0;
        std::int64_t frames = 0;
        std::size_t zones = 0; ///< that play it
    };

    std::string path;
    InstrumentFile file;
    std::vector<Sample> samples; ///< in the order in which zones name them
};

/// Reads the file at `path` (UTF-8) and the headers of its samples. Throws MakerError when it is refused.
InstrumentReport reportOn(const std::string& path);

Json reportToJson(const InstrumentReport& report);
std::string reportToText(const InstrumentReport& report);

} // namespace zarno

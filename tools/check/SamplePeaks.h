// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"
#include "tools/zarno/InstrumentReport.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace zarno {

/// The largest values of an instrument's samples. Each sample is read once.
class SamplePeaks {
  public:
    struct Peak {
        float left = 0.0f, right = 0.0f; ///< 0 when the sample cannot be read
    };

    explicit SamplePeaks(const InstrumentReport& report);

    Peak of(const ZoneEntry& zone);

  private:
    Peak read(const ZoneEntry& zone, const InstrumentReport::Sample& sample) const;

    const InstrumentReport& report_;
    std::shared_ptr<const File> file_;
    std::unordered_map<std::string, const InstrumentReport::Sample*> samples_; // by name
    std::unordered_map<std::string, Peak> peaks_;
};

} // namespace zarno

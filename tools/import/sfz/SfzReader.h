// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/SamplePool.h"
#include "tools/import/sfz/SfzText.h"

#include <functional>

namespace zarno {

/// Where an SFZ text finds the files that it names. Paths have forward slashes and are relative to the text.
struct SfzFiles {
    SfzIncludes include;
    /// None, and a remark, when there is no such sample.
    std::function<std::optional<SamplePool::Entry>(const std::string& path, const std::string& place)> sample;
};

/// The instrument of an SFZ text, but for its name and samples: zones name the samples that `files` gave.
/// Text of any kind is safe to give: the worst is a MakerError.
ImportedInstrument parseSfz(std::string_view text, const std::string& fileName, const SfzFiles& files,
                            ImportReport& report);

} // namespace zarno

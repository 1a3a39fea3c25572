// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/SoundFileReader.h"

#include <map>
#include <optional>
#include <string>

namespace zarno {

/// The sound files that an instrument names, each looked at once.
class SamplePool {
  public:
    explicit SamplePool(ImportReport& report)
        : report_(report) {}

    struct Entry {
        std::size_t sample; ///< index into ImportedInstrument::samples
        const SoundFileInfo* info;
    };
    /// None, and a remark, when the file cannot be read or holds no frames. A name that is there but for
    /// upper and lower case is found, as on systems that do not tell them apart.
    std::optional<Entry> find(const std::string& path, const std::string& place);

    std::vector<ImportedSample> takeSamples() { return std::move(samples_); }

  private:
    struct Known {
        std::optional<std::size_t> sample;
        SoundFileInfo info;
        std::string fault;
    };
    Known open(const std::string& path);

    ImportReport& report_;
    std::map<std::string, Known> known_; // by path as asked for
    std::vector<ImportedSample> samples_;
};

/// The file of that path, or one that differs in upper and lower case only; empty when there is none.
std::string findFile(const std::string& path);

} // namespace zarno

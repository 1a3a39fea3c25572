// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/FileNames.h"
#include "tools/import/SampleForm.h"
#include "tools/import/ShapedFrames.h"

#include <map>
#include <string>
#include <tuple>

namespace zarno {

/// The wave files of a library: what several of its instruments play is written once.
class SampleLibrary {
  public:
    /// The files lie in a folder of that name beside the instruments.
    explicit SampleLibrary(std::string folder)
        : folder_(std::move(folder)) {}

    const std::string& folder() const { return folder_; }

    struct Wave {
        std::string name; ///< without folder and extension
        bool isNew;       ///< no instrument before had it: the caller writes it
    };
    Wave wave(const ImportedSample& sample, const SampleForm& form, int bytesPerSample);

  private:
    using Form = std::tuple<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t, int>;
    using Key = std::tuple<std::string, std::optional<ShapedPart>, Form>;

    const std::string folder_;
    FileNames files_;
    std::map<Key, std::string> names_;
};

} // namespace zarno

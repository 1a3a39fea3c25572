// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sound/ZWaveFile.h"
#include "tools/zarno/JsonObject.h"
#include "tools/zarno/Model.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace zarno {

/// The waves beside an instrument.json, opened at most once each.
class SampleFolder {
  public:
    /// `samples`: the list of that name, or an empty one. Throws MakerError.
    SampleFolder(std::string folder, const Json& samples);

    /// A sample block and where its frames come from.
    struct Block {
        SampleBlock block;
        std::function<void(std::ostream&)> frames;
    };
    /// The block of the sample of this name, in the width given. Throws MakerError.
    Block makeBlock(const std::string& sampleName, bool sixteenBit);

    /// The wave of this name, closed; null when there is none that can be read. External samples are read as
    /// a player does, embedded ones may be float.
    std::shared_ptr<ZWaveFile> wave(const std::string& sampleName, WaveFormats formats);

  private:
    struct Entry {
        std::string file;
        bool raw = false;
        SampleBlockHeader header; // of raw data; of waves only what no wave says
    };

    Block rawBlock(const Entry& entry, bool sixteenBit) const;
    Block waveBlock(const std::string& sampleName, const Entry& entry, bool sixteenBit);
    std::string pathOf(const std::string& sampleName) const;

    std::string folder_; // absolute
    std::map<std::string, Entry> entries_;
    std::map<std::string, std::shared_ptr<ZWaveFile>> waves_; // by path; null when unreadable
};

} // namespace zarno

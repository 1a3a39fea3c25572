// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sound/ZSoundFile.h"
#include "tools/zarno/JsonObject.h"
#include "tools/zarno/Model.h"
#include "tools/zarno/ModelJson.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace zarno {

/// The recordings beside an instrument.json, opened at most once each.
class SampleFolder {
  public:
    /// `samples`: the list of that name, or an empty one. `decode`: see PackOptions.
    SampleFolder(std::string folder, const Json& samples, const PackOptions& options, JsonFaults& faults);

    /// A sample block and where its frames come from.
    struct Block {
        SampleBlock block;
        std::function<void(std::ostream&)> frames;
    };
    /// The block of the sample of this name, in the width given. Throws MakerError.
    Block makeBlock(const std::string& sampleName, bool sixteenBit);

    /// A recording, closed.
    struct Sound {
        std::shared_ptr<ZSoundFile> file; ///< null when there is none that can be read
        bool playsExternally = false;     ///< a player reads the file as it is
        bool isWave = false;
        bool hasFloats = false;
    };
    const Sound& sound(const std::string& sampleName);
    std::string pathOf(const std::string& sampleName) const; ///< empty for raw data

  private:
    struct Entry {
        std::string file;
        bool raw = false;
        SampleBlockHeader header; // of raw data; of waves only what no wave says
    };

    Block rawBlock(const Entry& entry, bool sixteenBit) const;
    Block soundBlock(const std::string& sampleName, const Entry& entry, bool sixteenBit);
    Sound openSound(const std::string& path) const;

    const std::function<std::unique_ptr<ZSoundFile>(const std::string&)> decode_;
    std::string folder_; // absolute
    std::map<std::string, Entry> entries_;
    std::map<std::string, Sound> sounds_; // by path
};

} // namespace zarno

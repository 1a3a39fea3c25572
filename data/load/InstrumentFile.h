// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Limits.h"
#include "data/load/InstrumentFormat.h"
#include "data/sound/ZEmbeddedSoundFile.h"
#include "engine/Records.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarno {

class Bytes;

/// A text as it lies in an instrument file.
struct StoredText {
    std::string bytes;
    bool terminated = true; ///< false: no zero byte within the limit; the last byte is not part of the text

    std::string_view text() const {
        return std::string_view(bytes).substr(0, bytes.size() - (terminated ? 0 : 1));
    }
    friend bool operator==(const StoredText&, const StoredText&) = default;
};

/// A sample inside an instrument file.
struct SampleBlock {
    std::string name;
    std::uint64_t position = 0; ///< of its header
    SampleBlockHeader header;
    std::uint64_t dataBytes = 0; ///< what lies between its header and what follows it
};

struct ZoneEntry {
    static constexpr std::size_t noBlock = SIZE_MAX;

    StoredText sample;
    std::size_t block = noBlock; ///< index into InstrumentFile::blocks, for embedded storage
    ZoneRecord record;
};

struct GroupEntry {
    StoredText name;
    GroupRecord record;
    std::int32_t zoneCount = 0; ///< as stored
    std::vector<ZoneEntry> zones;
};

/// Where and why reading an instrument file stopped before the instrument's end.
struct Incomplete {
    enum class Cause { EndOfFile, ReadError, Limit };

    std::uint64_t offset = 0;
    std::string reason; ///< the part of the file, in words
    Cause cause = Cause::EndOfFile;
};

/// An instrument file's whole structure as plain values, without the sample data.
struct InstrumentFile {
    enum class Refusal { None, CannotOpen, NotAnInstrument, TooNew };

    char magic[4] = {};
    std::int32_t version = 0;
    std::uint8_t storage = format::External;
    StoredText name;
    StoredText title;
    InstrumentSettings settings; ///< as stored: live values not yet replaced by the stored ones
    StoredText remark;
    std::int32_t imageSize = 0; ///< as stored
    std::vector<std::uint8_t> image;
    StoredText layout;
    std::int32_t licenceCount = 0; ///< as stored
    std::vector<StoredText> licences;
    std::int32_t groupCount = 0; ///< as stored
    std::vector<GroupEntry> groups;
    std::vector<SampleBlock> blocks; ///< in file order

    std::uint64_t endOffset = 0; ///< of the first byte behind the instrument
    std::uint64_t fileSize = 0;
    std::optional<Incomplete> incomplete; ///< set when the file ends before the instrument does

    bool isEmbedded() const { return storage != format::External; }

    /// Reads the structure. Reading stops where the file ends: what is only promised there is not made. What
    /// was read before a refusal is kept. `alive` is called at every zone. May throw std::bad_alloc.
    Refusal parse(Bytes& bytes, const std::function<void()>& alive = {});
};

/// One sentence for people.
const char* describe(InstrumentFile::Refusal refusal);

struct HeaderNames {
    std::string name;
    std::string title;
};

/// All that a peek can need: magic, version, storage and the two texts.
inline constexpr std::size_t headerPeekBytes = 4 + 4 + 1 + 2 * (limits::nameBytes + 1);

/// Reads only the two texts at the start of an instrument file. None when the file is refused.
std::optional<HeaderNames> peekHeader(const std::string& path);

} // namespace zarno

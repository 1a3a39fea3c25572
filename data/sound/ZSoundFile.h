// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace zarno {

class File;

/// A source of sample frames. Frames are interleaved by channel; the order of the operations is fixed.
///
/// Nothing here throws or reports: a sound that cannot be opened stays closed, a read that finds nothing
/// returns 0 frames. Reads never go past the sound's own last frame, whatever else the file holds. One thread
/// at a time may use one object; different objects are independent, also when they read the same file.
class ZSoundFile {
  public:
    virtual ~ZSoundFile() = default;

    /// Opens the sound. A wave file is named by `path` alone; an embedded sound reads `file`, which it keeps
    /// open together with its neighbours, from `position` on, and takes `path` as its name.
    virtual bool open(const std::string& path, std::shared_ptr<const File> file, std::uint64_t position) = 0;
    /// Opens the same sound again when it is closed. What was learned about it at the first open is kept.
    virtual bool reopen() = 0;
    /// Gives the file back to the system. The sound's properties stay readable.
    virtual void close() = 0;

    /// Writes the sound as a sample block: header, then all frames as 16-bit integers (2 bytes per sample) or
    /// floats (4). Opens the sound for the time it takes when it is closed. False when a frame could not be
    /// read or `out` failed.
    virtual bool writeEmbedded(std::ostream& out, int bytesPerSample);

    /// Read up to `frames` frames at the read position, advance it, and return how many there were.
    virtual std::uint64_t readShort(std::int16_t* destination, std::uint64_t frames) = 0;
    virtual std::uint64_t readFloat(float* destination, std::uint64_t frames) = 0;
    /// Moves the read position. Beyond the last frame is allowed and reads nothing.
    virtual void seekFrame(std::uint64_t frame) = 0;

    virtual bool isOpen() const = 0;
    virtual std::int32_t sampleRate() const = 0;   ///< Hz, as stored: may be any number
    virtual std::int32_t channelCount() const = 0; ///< values per frame as read: 1 or 2
    virtual std::uint64_t lengthInFrames() const = 0;
    virtual std::uint64_t storedSize() const = 0; ///< bytes, as the container states them
    virtual std::int32_t bytesPerSample() const = 0;
    virtual const std::string& path() const = 0;

    /// Names the sound after what follows the last backslash of its path.
    virtual void setNameFromPath();

    virtual bool hasRootNote() const = 0;
    virtual bool hasLoop() const = 0;
    virtual std::uint64_t loopStart() const = 0;
    virtual std::uint64_t loopEnd() const = 0; ///< exclusive
    virtual std::uint8_t rootNote() const = 0; ///< MIDI key

    const std::string& name() const { return name_; }

  protected:
    std::string name_;
};

/// Writes all frames of an open sound as 16-bit integers (2 bytes per sample) or floats (4). False when one
/// could not be read or `out` failed.
bool writeFrames(ZSoundFile& sound, std::ostream& out, int bytesPerSample);

} // namespace zarno

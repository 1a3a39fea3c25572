// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <cstdint>
#include <memory>
#include <string>

struct sf_private_tag; // libsndfile's handle

namespace zarno {

/// A sound file that is a part of another file, as in compressed SoundFonts. Everything libsndfile reads.
class CompressedSound {
  public:
    /// The `bytes` from `position` on. Not open when they are no sound.
    CompressedSound(const std::string& path, std::uint64_t position, std::uint64_t bytes);
    ~CompressedSound();
    CompressedSound(const CompressedSound&) = delete;
    CompressedSound& operator=(const CompressedSound&) = delete;

    bool isOpen() const { return handle_ != nullptr; }
    /// As the sound states; it may end before.
    std::uint64_t frames() const { return frames_; }
    int channels() const { return channels_; }
    int sampleRate() const { return sampleRate_; }
    /// Reads whole frames one after the other; fewer at the end.
    std::uint64_t read(float* destination, std::uint64_t frames);

  private:
    struct Part {
        File file;
        std::int64_t begin, length, at = 0;
    };
    Part part_;
    std::uint64_t frames_ = 0;
    int channels_ = 0, sampleRate_ = 0;
    sf_private_tag* handle_ = nullptr;
};

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/RawBytes.h"

#include <optional>

namespace zarno::test {

// Writes a RIFF/WAVE file chunk by chunk, as honest or as lying as a test wants it.
class WaveBuilder {
  public:
    WaveBuilder& chunk(const std::string& id, const std::string& body,
                       std::optional<std::uint32_t> size = {}) {
        chunks_ += id + raw(size.value_or(static_cast<std::uint32_t>(body.size()))) + body;
        return *this;
    }
    WaveBuilder& format(int channels, int rate, int bits, int blockAlign = -1, int tag = 1) {
        if (blockAlign < 0) blockAlign = channels * bits / 8;
        return chunk("fmt ", raw(static_cast<std::uint16_t>(tag), static_cast<std::uint16_t>(channels),
                                 static_cast<std::uint32_t>(rate),
                                 static_cast<std::uint32_t>(rate) * static_cast<std::uint32_t>(blockAlign),
                                 static_cast<std::uint16_t>(blockAlign), static_cast<std::uint16_t>(bits)));
    }
    WaveBuilder& data(const std::string& frames, std::optional<std::uint32_t> size = {}) {
        return chunk("data", frames, size);
    }
    WaveBuilder& sampler(std::uint32_t rootNote, std::uint32_t loops, std::uint32_t start,
                         std::uint32_t end) {
        const std::uint32_t none = 0;
        return chunk("smpl", raw(none, none, none, rootNote, none, none, none, loops, none) +
                                 raw(none, none, start, end, none, none));
    }
    std::string bytes(std::optional<std::uint32_t> riffSize = {}) const {
        return "RIFF" + raw(riffSize.value_or(static_cast<std::uint32_t>(4 + chunks_.size()))) + "WAVE" +
               chunks_;
    }

  private:
    std::string chunks_;
};

// A mono 16-bit wave whose frame i is first + i.
inline std::string rampWave(int frames, int rate = 44100, int first = 1) {
    std::string data;
    for (int i = 0; i < frames; ++i)
        data += raw(static_cast<std::int16_t>(first + i));
    return WaveBuilder().format(1, rate, 16).data(data).bytes();
}

} // namespace zarno::test

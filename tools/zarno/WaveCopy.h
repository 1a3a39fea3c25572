// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

namespace zarno {

class ZSoundFile;

/// The 44 bytes before the data of a wave file. `width` in bytes a value.
std::string waveHeader(int channels, int width, bool floats, std::int32_t rate, std::uint64_t dataBytes);
inline constexpr std::uint64_t waveHeaderBytes = 44;

/// The name under which a copy that players can read stands for the sample `name`: "a.flac.wav" for "a.flac",
/// "a.pcm.wav" for "a.wav".
std::string nameOfCopy(const std::string& name);

/// Bits of such a copy: 16, or 24 for recordings that have more.
int bitsOfCopy(const ZSoundFile& sound);

/// Writes the closed sound as a wave file of that many bits. `path` is for messages. Throws MakerError.
void writeCopy(ZSoundFile& sound, const std::string& path, std::ostream& out);

} // namespace zarno

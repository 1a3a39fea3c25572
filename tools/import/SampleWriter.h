// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/import/ImportReport.h"
#include "tools/import/SampleForm.h"

#include <functional>
#include <iosfwd>

namespace zarno {

enum class SampleWidth { Int16 = 2, Int24 = 3, Float32 = 4 };

/// Writes the form's frames, interleaved, the first two channels of more. Integers are rounded and clipped at
/// full scale. `progress` hears of each piece of frames written. Throws MakerError when the recording ends
/// early or `out` fails.
void writeFrames(const ImportedSample& sample, const SampleForm& form, SampleWidth width, std::ostream& out,
                 const std::function<void(std::uint64_t frames)>& progress);

/// A wave file of them, integers only. Throws MakerError also for more than a wave file can hold.
void writeWave(const ImportedSample& sample, const SampleForm& form, SampleWidth width,
               const std::string& path, const std::function<void(std::uint64_t frames)>& progress);

inline int writtenChannels(const SoundFormat& format) {
    return format.channels > 1 ? 2 : 1;
}
/// Of all that writeFrames writes.
inline std::uint64_t writtenBytes(const SoundFormat& format, const SampleForm& form, SampleWidth width) {
    return form.writtenFrames() * static_cast<std::uint64_t>(writtenChannels(format)) *
           static_cast<std::uint64_t>(width);
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace zarno {

class LicenceCheck;
class ZInstrument;

/// How a load ended. What the user is told about it is the caller's business.
struct LoadResult {
    bool loaded = false;
    std::string reason;               ///< why not, for people; empty when loaded
    std::vector<std::string> missing; ///< paths of samples that were not found; their zones are left out

    explicit operator bool() const { return loaded; }
};

/// Fills `instrument` from the file at `path` (native form, UTF-8). A file that cannot be opened leaves the
/// instrument untouched; one that is refused leaves it cleared; a load that is cancelled through the delegate
/// or runs out of memory leaves it with what was read so far. A file that ends early is loaded as far as it
/// goes and marked in the instrument's texts. `enteredText` is the licence text that the user entered.
///
/// Never throws. Loading thread, while the caller keeps the audio thread out of the instrument.
LoadResult loadInstrument(ZInstrument& instrument, const std::string& path, const std::string& enteredText,
                          LicenceCheck& licence);
/// The same with every licence allowed.
LoadResult loadInstrument(ZInstrument& instrument, const std::string& path);

} // namespace zarno

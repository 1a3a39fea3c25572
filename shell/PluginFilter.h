// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

class CZSP;

/// The processor that JUCE has created on this thread since the last call; null when it created none. JUCE's
/// wrapper owns it.
CZSP* takeCreatedProcessor();

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zarno {

class CZSP;

/// The processor that the framework has made on this thread since the last call; null when it made none. The
/// framework's wrapper owns it and gives it to nobody else.
CZSP* takeCreatedProcessor();

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/VoiceKernelBody.h"

namespace zarno {

const VoiceKernels& sse2Kernels() {
    static constexpr VoiceKernels kernels = makeKernels("SSE2");
    return kernels;
}

const VoiceKernels& voiceKernels() {
    static const VoiceKernels& best = avx2Kernels() != nullptr ? *avx2Kernels() : sse2Kernels();
    return best;
}

} // namespace zarno

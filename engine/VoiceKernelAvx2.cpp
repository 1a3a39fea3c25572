// SPDX-License-Identifier: GPL-3.0-or-later
// Compiled with AVX2 enabled (see CMakeLists.txt); avx2Kernels() itself runs anywhere.
#include "engine/VoiceKernelBody.h"

#if !defined(__AVX2__)
#error "built without its instruction set"
#endif

namespace zarno {

const VoiceKernels* avx2Kernels() {
    static constexpr VoiceKernels kernels = makeKernels("AVX2");
    return __builtin_cpu_supports("avx2") ? &kernels : nullptr;
}

} // namespace zarno

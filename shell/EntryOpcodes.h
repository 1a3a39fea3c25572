// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// What our own host may ask of the module beyond the interface: effVendorSpecific with `index` = magic and
/// `value` = one of these.
namespace zarno::entryOpcode {

inline constexpr std::int32_t magic = 0x5A73704F; // "ZspO"

/// `pointer` is the seed, as a number of 32 bits. Random choices are the same in every run then.
inline constexpr std::int32_t seedRandom = 1;

/// The number of voices that played at the end of the last block.
inline constexpr std::int32_t playingVoices = 2;

/// `pointer` chooses the inner loops: one of those below. All give the same samples. What the processor lacks
/// becomes SSE2.
inline constexpr std::int32_t useKernels = 3;
inline constexpr std::uint32_t noKernels = 0, sse2Kernels = 1, avx2Kernels = 2;

/// From now on no voice waits for the disk. A test that renders faster than real time is ahead of it, as a bounce is,
/// and voices may use the lead; with this they behave as in a host that plays live.
inline constexpr std::int32_t playLive = 4;

} // namespace zarno::entryOpcode

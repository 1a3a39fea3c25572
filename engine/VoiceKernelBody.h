// SPDX-License-Identifier: GPL-3.0-or-later
// The kernels' text, compiled once for each instruction set: the including file has set the compiler options.
// Everything lives in an unnamed namespace, so that no function compiled for AVX2 can be taken by the linker
// for a place that runs without it. Includes nothing that defines shared inline functions.
#pragma once

#include "engine/Interpolation.h"
#include "engine/VoiceKernel.h"

#include <immintrin.h>

namespace zarno {
namespace {

#if defined(__AVX2__)
using Floats = __m256;
using Doubles = __m256d;
using Ints = __m256i;
#define ZARNO_SIMD(operation) _mm256_##operation
#else
using Floats = __m128;
using Doubles = __m128d;
using Ints = __m128i;
#define ZARNO_SIMD(operation) _mm_##operation
#endif

constexpr int floatLanes = sizeof(Floats) / sizeof(float);
constexpr int doubleLanes = sizeof(Doubles) / sizeof(double);
constexpr int floatParts = VoiceLanes::count / floatLanes;
constexpr int doubleParts = VoiceLanes::count / doubleLanes;

// Four by four, within each 128 bits.
inline void transpose(Floats& a, Floats& b, Floats& c, Floats& d) {
    const Floats ab = ZARNO_SIMD(unpacklo_ps)(a, b), ab2 = ZARNO_SIMD(unpackhi_ps)(a, b);
    const Floats cd = ZARNO_SIMD(unpacklo_ps)(c, d), cd2 = ZARNO_SIMD(unpackhi_ps)(c, d);
    a = ZARNO_SIMD(shuffle_ps)(ab, cd, 0x44);
    b = ZARNO_SIMD(shuffle_ps)(ab, cd, 0xEE);
    c = ZARNO_SIMD(shuffle_ps)(ab2, cd2, 0x44);
    d = ZARNO_SIMD(shuffle_ps)(ab2, cd2, 0xEE);
}

// Recurrences: voices side by side.

inline void storeEnvelopes(FrameRow* rows, int firstLane, int frame, Floats (&e)[4]) {
    transpose(e[0], e[1], e[2], e[3]);
    for (int lane = 0; lane < 4; ++lane) {
#if defined(__AVX2__)
        _mm_store_ps(rows[firstLane + lane].envelope + frame, _mm256_castps256_ps128(e[lane]));
        _mm_store_ps(rows[firstLane + lane + 4].envelope + frame, _mm256_extractf128_ps(e[lane], 1));
#else
        _mm_store_ps(rows[firstLane + lane].envelope + frame, e[lane]);
#endif
    }
}

inline void storePositions(FrameRow* rows, int firstLane, int frame, Doubles first, Doubles second) {
    const Doubles even = ZARNO_SIMD(unpacklo_pd)(first, second), odd = ZARNO_SIMD(unpackhi_pd)(first, second);
#if defined(__AVX2__)
    _mm_store_pd(rows[firstLane].position + frame, _mm256_castpd256_pd128(even));
    _mm_store_pd(rows[firstLane + 1].position + frame, _mm256_castpd256_pd128(odd));
    _mm_store_pd(rows[firstLane + 2].position + frame, _mm256_extractf128_pd(even, 1));
    _mm_store_pd(rows[firstLane + 3].position + frame, _mm256_extractf128_pd(odd, 1));
#else
    _mm_store_pd(rows[firstLane].position + frame, even);
    _mm_store_pd(rows[firstLane + 1].position + frame, odd);
#endif
}

// The rows are filled in steps of four frames; the frames behind the last one are not used, and the lanes'
// state is taken where the last frame left it.
template <bool envelopesMove, typename Increment>
inline void advanceLanes(VoiceLanes& lanes, FrameRow* rows, int frames, Increment increment) {
    Doubles position[doubleParts];
    Floats envelope[floatParts], target[floatParts], coefficient[floatParts];
    for (int p = 0; p < doubleParts; ++p)
        position[p] = ZARNO_SIMD(load_pd)(lanes.position + p * doubleLanes);
    for (int p = 0; p < floatParts; ++p) {
        envelope[p] = ZARNO_SIMD(load_ps)(lanes.envelope + p * floatLanes);
        target[p] = ZARNO_SIMD(load_ps)(lanes.target + p * floatLanes);
        coefficient[p] = ZARNO_SIMD(load_ps)(lanes.coefficient + p * floatLanes);
    }
    for (int frame = 0; frame < frames; frame += 4) {
        const int used = frames - frame < 4 ? frames - frame : 4;
        Doubles at[4][doubleParts];
        Floats level[floatParts][4];
        for (int k = 0; k < 4; ++k) {
            if (k == used) break;
            for (int p = 0; p < doubleParts; ++p) {
                at[k][p] = position[p];
                position[p] += increment(frame + k, p);
            }
            if constexpr (envelopesMove)
                for (int p = 0; p < floatParts; ++p) {
                    envelope[p] = envelope[p] + (target[p] - envelope[p]) * coefficient[p];
                    level[p][k] = envelope[p];
                }
        }
        for (int k = used; k < 4; ++k) {
            for (int p = 0; p < doubleParts; ++p)
                at[k][p] = at[k - 1][p];
            if constexpr (envelopesMove)
                for (int p = 0; p < floatParts; ++p)
                    level[p][k] = level[p][k - 1];
        }
        for (int p = 0; p < doubleParts; ++p) {
            storePositions(rows, p * doubleLanes, frame, at[0][p], at[1][p]);
            storePositions(rows, p * doubleLanes, frame + 2, at[2][p], at[3][p]);
        }
        if constexpr (envelopesMove)
            for (int p = 0; p < floatParts; ++p)
                storeEnvelopes(rows, p * floatLanes, frame, level[p]);
    }
    for (int p = 0; p < doubleParts; ++p)
        ZARNO_SIMD(store_pd)(lanes.position + p * doubleLanes, position[p]);
    for (int p = 0; p < floatParts; ++p)
        ZARNO_SIMD(store_ps)(lanes.envelope + p * floatLanes, envelope[p]);
}

void advance(VoiceLanes& lanes, FrameRow* rows, int frames) {
    Doubles increments[doubleParts];
    for (int p = 0; p < doubleParts; ++p)
        increments[p] = ZARNO_SIMD(load_pd)(lanes.increment + p * doubleLanes);
    advanceLanes<true>(lanes, rows, frames, [&](int, int part) { return increments[part]; });
}

void advanceHeld(VoiceLanes& lanes, FrameRow* rows, int frames) {
    Doubles increments[doubleParts];
    for (int p = 0; p < doubleParts; ++p)
        increments[p] = ZARNO_SIMD(load_pd)(lanes.increment + p * doubleLanes);
    advanceLanes<false>(lanes, rows, frames, [&](int, int part) { return increments[part]; });
}

void advanceFollowing(VoiceLanes& lanes, FrameRow* rows, int frames, const float* bend,
                      const float* vibrato) {
    advanceLanes<true>(lanes, rows, frames, [&](int frame, int part) {
        float ratio[doubleLanes];
        for (int lane = 0; lane < doubleLanes; ++lane)
            ratio[lane] = bend[frame] * lanes.glide[part * doubleLanes + lane] * vibrato[frame];
#if defined(__AVX2__)
        const Doubles wide = _mm256_cvtps_pd(_mm_loadu_ps(ratio));
#else
        const Doubles wide = _mm_set_pd(static_cast<double>(ratio[1]), static_cast<double>(ratio[0]));
#endif
        return ZARNO_SIMD(load_pd)(lanes.increment + part * doubleLanes) * wide;
    });
}

// Interpolation: frames side by side.

struct ReadPoints {
    int index[floatLanes];
    Floats fraction;
};

inline ReadPoints readPoints(const double* position, double origin) {
    ReadPoints points;
#if defined(__AVX2__)
    const __m256d base = _mm256_set1_pd(origin);
    const __m256d low = _mm256_loadu_pd(position) - base, high = _mm256_loadu_pd(position + 4) - base;
    const __m128i lowIndex = _mm256_cvttpd_epi32(low), highIndex = _mm256_cvttpd_epi32(high);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(points.index), lowIndex);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(points.index + 4), highIndex);
    const __m128 lowPart = _mm256_cvtpd_ps(low - _mm256_cvtepi32_pd(lowIndex));
    const __m128 highPart = _mm256_cvtpd_ps(high - _mm256_cvtepi32_pd(highIndex));
    points.fraction = _mm256_insertf128_ps(_mm256_castps128_ps256(lowPart), highPart, 1);
#else
    const __m128d base = _mm_set1_pd(origin);
    const __m128d low = _mm_loadu_pd(position) - base, high = _mm_loadu_pd(position + 2) - base;
    const __m128i lowIndex = _mm_cvttpd_epi32(low), highIndex = _mm_cvttpd_epi32(high);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(points.index), _mm_unpacklo_epi64(lowIndex, highIndex));
    const __m128 lowPart = _mm_cvtpd_ps(low - _mm_cvtepi32_pd(lowIndex));
    const __m128 highPart = _mm_cvtpd_ps(high - _mm_cvtepi32_pd(highIndex));
    points.fraction = _mm_movelh_ps(lowPart, highPart);
#endif
    return points;
}

// 16 bytes for each of four frames; with AVX2 the upper half holds the four frames behind them.
template <typename Address>
inline void loadFour(Address address, Ints (&rows)[4]) {
    for (int k = 0; k < 4; ++k) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(address(k)));
#if defined(__AVX2__)
        const __m128i behind = _mm_loadu_si128(reinterpret_cast<const __m128i*>(address(k + 4)));
        rows[k] = _mm256_inserti128_si256(_mm256_castsi128_si256(first), behind, 1);
#else
        rows[k] = first;
#endif
    }
}

inline void transpose(Ints (&rows)[4]) {
    Floats a = (Floats) rows[0], b = (Floats) rows[1], c = (Floats) rows[2], d = (Floats) rows[3];
    transpose(a, b, c, d);
    rows[0] = (Ints) a;
    rows[1] = (Ints) b;
    rows[2] = (Ints) c;
    rows[3] = (Ints) d;
}

struct Taps {
    Floats left[4], right[4]; // one before, at, one behind, two behind
};

template <bool sixteenBit, bool stereo>
inline Taps loadTaps(const void* data, const int* index) {
    Taps taps;
    Ints rows[4];
    if constexpr (sixteenBit && stereo) {
        const auto* frames = static_cast<const short*>(data);
        loadFour([&](int k) { return frames + 2 * (static_cast<long long>(index[k]) - 1); }, rows);
        transpose(rows);
        for (int tap = 0; tap < 4; ++tap) {
            const Ints low = ZARNO_SIMD(srai_epi32)(ZARNO_SIMD(slli_epi32)(rows[tap], 16), 16);
            taps.left[tap] = ZARNO_SIMD(cvtepi32_ps)(low);
            taps.right[tap] = ZARNO_SIMD(cvtepi32_ps)(ZARNO_SIMD(srai_epi32)(rows[tap], 16));
        }
    } else if constexpr (sixteenBit) {
        // Eight shorts are loaded a frame, the upper four unused: guards make them readable.
        const auto* frames = static_cast<const short*>(data);
        loadFour([&](int k) { return frames + (static_cast<long long>(index[k]) - 1); }, rows);
        transpose(rows); // rows[0]: taps 0 and 1 of each frame, rows[1]: taps 2 and 3
        for (int pair = 0; pair < 2; ++pair) {
            const Ints low = ZARNO_SIMD(srai_epi32)(ZARNO_SIMD(slli_epi32)(rows[pair], 16), 16);
            taps.left[2 * pair] = ZARNO_SIMD(cvtepi32_ps)(low);
            taps.left[2 * pair + 1] = ZARNO_SIMD(cvtepi32_ps)(ZARNO_SIMD(srai_epi32)(rows[pair], 16));
        }
    } else if constexpr (stereo) {
        const auto* frames = static_cast<const float*>(data);
        for (int half = 0; half < 2; ++half) {
            loadFour([&](int k) { return frames + 2 * (static_cast<long long>(index[k]) - 1 + 2 * half); },
                     rows);
            transpose(rows);
            taps.left[2 * half] = (Floats) rows[0];
            taps.right[2 * half] = (Floats) rows[1];
            taps.left[2 * half + 1] = (Floats) rows[2];
            taps.right[2 * half + 1] = (Floats) rows[3];
        }
    } else {
        const auto* frames = static_cast<const float*>(data);
        loadFour([&](int k) { return frames + (static_cast<long long>(index[k]) - 1); }, rows);
        transpose(rows);
        for (int tap = 0; tap < 4; ++tap)
            taps.left[tap] = (Floats) rows[tap];
    }
    return taps;
}

// A whole frame is read as it is, without interpolation.
template <int quality>
inline Floats interpolate(Floats t, const Floats (&y)[4]) {
    Floats between;
    if constexpr (quality == 0)
        between = interpolateLow(t, y[1], y[2]);
    else if constexpr (quality == 1)
        between = interpolateMid(t, y[0], y[1], y[2], y[3]);
    else
        between = interpolateHigh(t, y[0], y[1], y[2], y[3]);
    return (t == 0.0f) ? y[1] : between;
}

template <int quality, bool sixteenBit, bool stereo>
inline void renderFrames(const MixJob& job, const double* position, const float* envelope, Floats& left,
                         Floats& right) {
    const ReadPoints points = readPoints(position, job.origin);
    const Taps taps = loadTaps<sixteenBit, stereo>(job.data, points.index);
    left = interpolate<quality>(points.fraction, taps.left);
    right = stereo ? interpolate<quality>(points.fraction, taps.right) : left;
    if constexpr (sixteenBit) { // a power of two: the same bits before or after the interpolation
        left *= sixteenBitScale;
        right *= sixteenBitScale;
    }
    const Floats level = ZARNO_SIMD(loadu_ps)(envelope);
    left = left * level * job.leftGain;
    right = right * level * job.rightGain;
}

template <int quality, bool sixteenBit, bool stereo>
void mix(const MixJob& job) {
    Floats left, right;
    int frame = 0;
    for (; frame + floatLanes <= job.frames; frame += floatLanes) {
        renderFrames<quality, sixteenBit, stereo>(job, job.position + frame, job.envelope + frame, left,
                                                  right);
        const Floats expression = ZARNO_SIMD(loadu_ps)(job.expression + frame);
        const Floats sumLeft = ZARNO_SIMD(loadu_ps)(job.left + frame) +
                               left * expression * ZARNO_SIMD(loadu_ps)(job.panLeft + frame);
        const Floats sumRight = ZARNO_SIMD(loadu_ps)(job.right + frame) +
                                right * expression * ZARNO_SIMD(loadu_ps)(job.panRight + frame);
        ZARNO_SIMD(storeu_ps)(job.left + frame, sumLeft);
        ZARNO_SIMD(storeu_ps)(job.right + frame, sumRight);
    }
    if (frame == job.frames) return;

    // The rest, filled up with the last frame.
    double position[floatLanes];
    float envelope[floatLanes], l[floatLanes], r[floatLanes];
    for (int i = 0; i < floatLanes; ++i) {
        const int from = frame + i < job.frames ? frame + i : job.frames - 1;
        position[i] = job.position[from];
        envelope[i] = job.envelope[from];
    }
    renderFrames<quality, sixteenBit, stereo>(job, position, envelope, left, right);
    ZARNO_SIMD(storeu_ps)(l, left);
    ZARNO_SIMD(storeu_ps)(r, right);
    for (int i = 0; frame < job.frames; ++i, ++frame) {
        job.left[frame] += l[i] * job.expression[frame] * job.panLeft[frame];
        job.right[frame] += r[i] * job.expression[frame] * job.panRight[frame];
    }
}

template <int quality>
constexpr void setMixes(VoiceKernels& kernels) {
    kernels.mix[quality][0][0] = mix<quality, false, false>;
    kernels.mix[quality][0][1] = mix<quality, false, true>;
    kernels.mix[quality][1][0] = mix<quality, true, false>;
    kernels.mix[quality][1][1] = mix<quality, true, true>;
}

constexpr VoiceKernels makeKernels(const char* name) {
    VoiceKernels kernels{name, advance, advanceHeld, advanceFollowing, {}};
    setMixes<0>(kernels);
    setMixes<1>(kernels);
    setMixes<2>(kernels);
    return kernels;
}

#undef ZARNO_SIMD

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// The conversions of stored samples, as plain loops over packed values. `Bytes` is the width of a
// stored sample; `Stereo` matters to 8-bit samples only.
namespace zarno::convert {

template <int Bytes, bool Stereo>
inline float sampleToFloat(const std::uint8_t* raw) {
    if constexpr (Bytes == 1) {
        // Stereo keeps the offset of 128, on purpose: instruments were tuned by ear to how it sounds.
        return static_cast<float>(Stereo ? raw[0] : raw[0] - 128) * 0.0078125f;
    } else if constexpr (Bytes == 2) {
        std::int16_t value;
        std::memcpy(&value, raw, sizeof value);
        return static_cast<float>(value) * 0x1p-15f;
    } else if constexpr (Bytes == 3) {
        const std::uint32_t top = raw[0] << 8 | raw[1] << 16 | static_cast<std::uint32_t>(raw[2]) << 24;
        return static_cast<float>(static_cast<std::int32_t>(top)) * 0x1p-31f;
    } else {
        static_assert(Bytes == 4);
        std::int32_t value;
        std::memcpy(&value, raw, sizeof value);
        return static_cast<float>(value) * 0x1p-31f;
    }
}

template <int Bytes, bool Stereo>
inline std::int16_t sampleToShort(const std::uint8_t* raw) {
    if constexpr (Bytes == 4) return 0; // on purpose: 32-bit samples have no 16-bit form
    // The low 16 bits: 8-bit stereo reaches 65280.
    return static_cast<std::int16_t>(static_cast<std::int32_t>(sampleToFloat<Bytes, Stereo>(raw) * 32768.0f));
}

template <int Bytes, bool Stereo>
inline void values(const std::uint8_t* raw, float* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = sampleToFloat<Bytes, Stereo>(raw + i * Bytes);
}

template <int Bytes, bool Stereo>
inline void values(const std::uint8_t* raw, std::int16_t* out, std::size_t count) {
    if constexpr (Bytes == 2) {
        std::memcpy(out, raw, count * 2);
    } else {
        for (std::size_t i = 0; i < count; ++i)
            out[i] = sampleToShort<Bytes, Stereo>(raw + i * Bytes);
    }
}

/// Converts `count` packed values of 1 to 4 bytes each. Out is float or std::int16_t.
template <typename Out>
inline void packed(int bytesPerSample, bool stereo, const std::uint8_t* raw, Out* out, std::size_t count) {
    switch (bytesPerSample) {
    case 1:
        return stereo ? values<1, true>(raw, out, count) : values<1, false>(raw, out, count);
    case 2:
        return values<2, false>(raw, out, count);
    case 3:
        return values<3, false>(raw, out, count);
    case 4:
        return values<4, false>(raw, out, count);
    }
}

/// Infinities and NaN, told by their exponent of all ones, become 0.
inline void silenceNonFinite(float* values, std::size_t count) {
    constexpr std::uint32_t exponent = 0x7F800000u;
    for (std::size_t i = 0; i < count; ++i) {
        const auto bits = std::bit_cast<std::uint32_t>(values[i]);
        values[i] = (bits & exponent) == exponent ? 0.0f : values[i];
    }
}

/// Stored floats keep their bits; as 16-bit integers they are clipped, and what is no number is silent.
inline void floats(const std::uint8_t* raw, float* out, std::size_t count) {
    std::memcpy(out, raw, count * sizeof(float));
}
inline void floats(const std::uint8_t* raw, std::int16_t* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        float value;
        std::memcpy(&value, raw + i * sizeof value, sizeof value);
        const float scaled = value == value ? value * 32768.0f : 0.0f;
        out[i] = static_cast<std::int16_t>(std::clamp(scaled, -32768.0f, 32767.0f));
    }
}

} // namespace zarno::convert

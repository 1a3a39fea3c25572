// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Sha256.h"

#include "platform/File.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace zarno {
namespace {

constexpr std::uint32_t constants[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

using State = std::array<std::uint32_t, 8>;

void addBlock(State& state, const std::uint8_t* block) {
    std::uint32_t w[64];
    for (int i = 0; i < 16; ++i)
        w[i] = static_cast<std::uint32_t>(block[4 * i]) << 24 |
               static_cast<std::uint32_t>(block[4 * i + 1]) << 16 |
               static_cast<std::uint32_t>(block[4 * i + 2]) << 8 | block[4 * i + 3];
    for (int i = 16; i < 64; ++i) {
        const std::uint32_t a = w[i - 15], b = w[i - 2];
        w[i] = w[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ (a >> 3)) + w[i - 7] +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ (b >> 10));
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (int i = 0; i < 64; ++i) {
        const std::uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                                    ((e & f) ^ (~e & g)) + constants[i] + w[i];
        const std::uint32_t second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g, g = f, f = e, e = d + first, d = c, c = b, b = a, a = first + second;
    }
    const State added = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < state.size(); ++i)
        state[i] += added[i];
}

} // namespace

std::string sha256OfFile(const std::string& path) {
    File file(path);
    if (!file.isOpen()) throw MakerError(path, "cannot be read");
    State state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                   0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::vector<std::uint8_t> buffer(1 << 16);
    std::uint64_t bytes = 0;
    std::size_t got = 0;
    while ((got = file.read(buffer.data(), buffer.size())) == buffer.size()) {
        bytes += got;
        for (std::size_t i = 0; i < got; i += 64)
            addBlock(state, buffer.data() + i);
    }
    bytes += got;
    if (bytes != file.size()) throw MakerError(path, "cannot be read");
    // What is left, a one bit, zeros, and the length in bits at the end of a block.
    buffer.resize((got + 9 + 63) / 64 * 64);
    std::fill(buffer.begin() + static_cast<std::ptrdiff_t>(got), buffer.end(), std::uint8_t{0});
    buffer[got] = 0x80;
    for (int i = 0; i < 8; ++i)
        buffer[buffer.size() - 1 - static_cast<std::size_t>(i)] =
            static_cast<std::uint8_t>(bytes * 8 >> (8 * i));
    for (std::size_t i = 0; i < buffer.size(); i += 64)
        addBlock(state, buffer.data() + i);

    std::string hex;
    for (const std::uint32_t word : state) {
        char digits[9];
        std::snprintf(digits, sizeof digits, "%08x", word);
        hex += digits;
    }
    return hex;
}

} // namespace zarno

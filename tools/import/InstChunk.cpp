// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/InstChunk.h"

#include "data/Bytes.h"
#include "platform/File.h"

#include <cstring>

namespace zarno {
namespace {

struct Inst {
    std::uint8_t note;
    std::int8_t cents, gain; // gain in dB
    std::uint8_t lowKey, highKey, lowVelocity, highVelocity;
};
static_assert(sizeof(Inst) == 7);

bool findChunk(Bytes& bytes, const char* wanted) {
    char id[4];
    std::uint32_t size = 0;
    if (!bytes.read(id, 4) || std::memcmp(id, "RIFF", 4) != 0) return false;
    bytes.seek(12);
    while (bytes.read(id, 4) && bytes.read(size)) {
        if (std::memcmp(id, wanted, 4) == 0) return true;
        bytes.seek(bytes.position() + size + size % 2);
    }
    return false;
}

// Zeros all over are a chunk that nobody filled in.
std::optional<ImportedRange> rangeOf(int low, int high) {
    if (low > high || high > 127 || high == 0 || high - low >= 126) return std::nullopt;
    return ImportedRange{low, high};
}

} // namespace

void readInstChunk(const std::string& path, SoundFileInfo& info) {
    const File file(path);
    if (!file.isOpen()) return;
    Bytes bytes(file, 64);
    Inst inst;
    if (!findChunk(bytes, "inst") || !bytes.read(&inst, sizeof inst)) return;
    info.keys = rangeOf(inst.lowKey, inst.highKey);
    info.velocities = rangeOf(inst.lowVelocity, inst.highVelocity);
    info.gain = inst.gain;
    if (info.rootKey || inst.note == 0 || inst.note > 127) return;
    info.rootKey = inst.note;
    info.tune = inst.cents;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sound/WaveHeader.h"

#include "data/Bytes.h"

#include <algorithm>
#include <cstring>

namespace zarno {
namespace {

constexpr std::size_t chunkHeaderBytes = 4 + 4;
constexpr std::uint16_t integerPcm = 1;
constexpr std::uint16_t floatPcm = 3;
constexpr std::uint16_t extensible = 0xFFFE; // the real tag follows in an extension of the chunk
constexpr std::uint8_t restOfTag[14] = {0, 0, 0, 0, 16, 0, 128, 0, 0, 170, 0, 56, 155, 113};

bool isId(const char (&id)[4], const char* name) {
    return std::memcmp(id, name, 4) == 0;
}

// After the 16 bytes of a plain format: size, valid bits, speakers, and a tag of 16 bytes.
bool readExtension(Bytes& bytes, std::uint32_t chunkSize, std::uint16_t& tag) {
    struct {
        std::uint8_t before[8];
        std::uint16_t tag;
        std::uint8_t rest[14];
    } extension;
    static_assert(sizeof extension == 24);
    if (chunkSize < 40 || !bytes.read(&extension, sizeof extension)) return false;
    tag = extension.tag;
    return std::memcmp(extension.rest, restOfTag, sizeof restOfTag) == 0;
}

bool readFormat(Bytes& bytes, std::uint32_t chunkSize, WaveHeader& header, WaveFormats formats) {
    struct {
        std::uint16_t tag, channels;
        std::uint32_t sampleRate, byteRate;
        std::uint16_t blockAlign, bitsPerSample;
    } format;
    static_assert(sizeof format == 16);
    if (!bytes.read(&format, sizeof format)) return false;
    const bool forTools = formats == WaveFormats::Tools;
    if (format.tag == extensible && forTools && !readExtension(bytes, chunkSize, format.tag)) return false;
    header.floatSamples = format.tag == floatPcm && format.bitsPerSample == 32 && forTools;
    if (format.tag != integerPcm && !header.floatSamples) return false;
    if (format.channels < 1 || format.channels > 2) return false;
    if (format.bitsPerSample == 0 || format.bitsPerSample % 8 != 0 || format.bitsPerSample > 32) return false;

    header.sampleRate = static_cast<std::int32_t>(format.sampleRate);
    header.channels = format.channels;
    header.bytesPerSample = format.bitsPerSample / 8;
    // A frame distance that cannot hold its samples is as good as none.
    const auto packed = static_cast<std::uint32_t>(header.channels * header.bytesPerSample);
    header.bytesPerFrame = std::max<std::uint32_t>(format.blockAlign, packed);
    return true;
}

bool readData(Bytes& bytes, std::uint32_t chunkSize, WaveHeader& header) {
    if (header.bytesPerFrame == 0) return false;
    header.dataOffset = bytes.position();
    header.frames = std::min<std::uint64_t>(chunkSize, bytes.left()) / header.bytesPerFrame;
    return true;
}

// The fourth of nine fields is the root note, the eighth the number of loop records that follow.
void readSampler(Bytes& bytes, std::uint32_t chunkSize, WaveHeader& header) {
    std::uint32_t fields[9];
    if (chunkSize < sizeof fields || !bytes.read(fields, sizeof fields)) return;
    header.hasRootNote = true;
    header.rootNote = static_cast<std::uint8_t>(fields[3]);

    struct {
        std::uint32_t id, type, start, end, fraction, playCount;
    } loop;
    static_assert(sizeof loop == 24);
    const bool holdsLoop = fields[7] != 0 && chunkSize >= sizeof fields + sizeof loop;
    if (!holdsLoop || !bytes.read(&loop, sizeof loop)) return;
    header.hasLoop = true;
    header.loopStart = loop.start;
    header.loopEnd = std::uint64_t{loop.end} + 1;
}

} // namespace

bool readWaveHeader(Bytes& bytes, WaveHeader& header, WaveFormats formats) {
    header = WaveHeader();
    char id[4];
    if (!bytes.read(id, 4) || !isId(id, "RIFF") || !bytes.read(header.riffSize)) return false;
    if (!bytes.read(id, 4) || !isId(id, "WAVE")) return false;

    std::uint32_t chunkSize = 0;
    while (bytes.position() - chunkHeaderBytes < header.riffSize) {
        if (!bytes.read(id, 4) || !bytes.read(chunkSize)) break;
        std::uint64_t next = bytes.position() + chunkSize;
        if (isId(id, "fmt ")) {
            if (!readFormat(bytes, chunkSize, header, formats)) return false;
        } else if (isId(id, "data")) {
            if (!readData(bytes, chunkSize, header)) return false;
        } else if (isId(id, "smpl")) {
            readSampler(bytes, chunkSize, header);
        } else if (isId(id, "inst")) {
            ++next; // on purpose the only chunk whose pad byte counts: files in use rely on it
        }
        bytes.seek(next);
    }
    if (header.bytesPerFrame == 0) return false;
    // A second format behind the data must not promise frames that are not there.
    bytes.seek(header.dataOffset);
    header.frames = std::min<std::uint64_t>(header.frames, bytes.left() / header.bytesPerFrame);
    return true;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/CompressedSound.h"

#include <sndfile.h>

#include <algorithm>

namespace zarno {

CompressedSound::CompressedSound(const std::string& path, std::uint64_t position, std::uint64_t bytes)
    : part_{File(path), static_cast<std::int64_t>(position), static_cast<std::int64_t>(bytes)} {
    if (!part_.file.isOpen()) return;
    SF_VIRTUAL_IO io = {};
    io.get_filelen = [](void* user) -> sf_count_t { return static_cast<Part*>(user)->length; };
    io.tell = [](void* user) -> sf_count_t { return static_cast<Part*>(user)->at; };
    io.seek = [](sf_count_t offset, int whence, void* user) -> sf_count_t {
        Part& part = *static_cast<Part*>(user);
        const std::int64_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? part.at : part.length;
        if (offset < -from || offset > part.length - from) return -1;
        return part.at = from + offset;
    };
    io.read = [](void* to, sf_count_t count, void* user) -> sf_count_t {
        Part& part = *static_cast<Part*>(user);
        const std::int64_t wanted = std::clamp<std::int64_t>(count, 0, part.length - part.at);
        const auto got = static_cast<std::int64_t>(part.file.readAt(
            static_cast<std::uint64_t>(part.begin + part.at), to, static_cast<std::size_t>(wanted)));
        part.at += got;
        return got;
    };
    io.write = [](const void*, sf_count_t, void*) -> sf_count_t { return 0; };
    SF_INFO info = {};
    handle_ = sf_open_virtual(&io, SFM_READ, &info, &part_);
    if (!handle_) return;
    constexpr std::int64_t mostFramesPerByte = 16384; // no codec packs silence more densely
    frames_ =
        static_cast<std::uint64_t>(std::clamp<sf_count_t>(info.frames, 0, part_.length * mostFramesPerByte));
    channels_ = info.channels;
    sampleRate_ = info.samplerate;
}

CompressedSound::~CompressedSound() {
    if (handle_) sf_close(handle_);
}

std::uint64_t CompressedSound::read(float* destination, std::uint64_t frames) {
    const sf_count_t got = sf_readf_float(handle_, destination, static_cast<sf_count_t>(frames));
    return static_cast<std::uint64_t>(std::max<sf_count_t>(got, 0));
}

} // namespace zarno

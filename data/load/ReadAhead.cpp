// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/ReadAhead.h"

#include "platform/File.h"
#include "platform/ThreadRole.h"

#include <utility>

namespace zarno {
namespace {

constexpr std::size_t zonesAhead = 16;

} // namespace

void ReadAhead::add(std::string path, std::uint64_t offset, std::uint64_t bytes) {
    thread::mustBe(thread::reader | thread::loading);
    pieces_.push_back({nullptr, std::move(path), offset, bytes});
}

void ReadAhead::add(std::shared_ptr<const File> file, std::uint64_t offset, std::uint64_t bytes) {
    thread::mustBe(thread::reader | thread::loading);
    pieces_.push_back({std::move(file), {}, offset, bytes});
}

void ReadAhead::reach(std::size_t zone) {
    thread::mustBe(thread::reader | thread::loading);
    for (; next_ < pieces_.size() && next_ <= zone + zonesAhead; ++next_) {
        const Piece& piece = pieces_[next_];
        if (piece.file) {
            piece.file->adviseNeeded(piece.offset, piece.bytes);
            continue;
        }
        const File wave(piece.path);
        constexpr std::uint64_t header = 4096; // holds it nearly always
        if (piece.offset > header) wave.adviseNeeded(0, header);
        wave.adviseNeeded(piece.offset, piece.bytes + header);
    }
}

} // namespace zarno

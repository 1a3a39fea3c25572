// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zarno {

class File;

/// Lets the disk work on the preloads of the next zones while one is being read: opening many small pieces of
/// cold files one after the other would wait for each. Only a hint: nothing is read here.
/// [reader, loading]
class ReadAhead {
  public:
    /// The next zone's piece: of the wave at `path`, or of `file` when there is one.
    void add(std::string path, std::uint64_t offset, std::uint64_t bytes);
    void add(std::shared_ptr<const File> file, std::uint64_t offset, std::uint64_t bytes);

    /// To be called before zone number `zone`, counted in the order of the additions, is read.
    void reach(std::size_t zone);

  private:
    struct Piece {
        std::shared_ptr<const File> file;
        std::string path;
        std::uint64_t offset = 0, bytes = 0;
    };

    std::vector<Piece> pieces_;
    std::size_t next_ = 0;
};

} // namespace zarno

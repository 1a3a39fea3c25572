// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace zarno {

class File;

static_assert(std::endian::native == std::endian::little, "stored fields are copied as they lie");

/// Reads little-endian fields from a file or from memory, never past the end, and always knows where it is.
///
/// Reads of fixed size are all or nothing: one that fails leaves the position where the missing field would
/// have begun. Nothing is allocated before it is known that the bytes exist.
class Bytes {
  public:
    /// `file` must stay open while this is in use. A read from the file fetches at least `bufferBytes`.
    explicit Bytes(const File& file, std::size_t bufferBytes = 4096);
    /// `data` must stay alive while this is in use.
    Bytes(const void* data, std::size_t size);

    std::uint64_t position() const { return position_; }
    std::uint64_t size() const { return size_; }
    std::uint64_t left() const { return position_ < size_ ? size_ - position_ : 0; }

    /// True when the system has given fewer bytes than the file's size promises: a fault of the disk, or the
    /// file became shorter meanwhile.
    bool readFailed() const { return readFailed_; }

    /// Beyond the end is allowed: nothing is left there.
    void seek(std::uint64_t position) { position_ = position; }

    bool read(void* destination, std::size_t count);
    /// Reads what there is of `count` bytes and returns how many that were.
    std::size_t readSome(void* destination, std::size_t count);

    template <typename T>
    bool read(T& value) {
        static_assert(std::is_arithmetic_v<T>);
        return read(&value, sizeof(T));
    }

    /// Reads `count` bytes into `block`; false, with an empty block, when there are fewer.
    bool readBlock(std::vector<std::uint8_t>& block, std::uint64_t count);

    /// How a zero-terminated string ended.
    enum class StringEnd {
        Zero,     ///< by its zero byte
        Limit,    ///< limit + 1 bytes held none: they are all in the text
        EndOfFile ///< the file ended first: the text is what there was
    };
    /// Reads a string of at most `limit` bytes before its zero byte.
    StringEnd readString(std::string& text, std::size_t limit);

  private:
    std::size_t fillWindow();

    const File* file_ = nullptr; // none: the window is all there is
    std::vector<std::uint8_t> buffer_;
    const std::uint8_t* window_ = nullptr;
    std::uint64_t windowStart_ = 0;
    std::size_t windowBytes_ = 0;
    std::uint64_t size_ = 0;
    std::uint64_t position_ = 0;
    bool readFailed_ = false;
};

} // namespace zarno

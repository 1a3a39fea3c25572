// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zarno {

/// A regular file opened for reading. Unbuffered: a caller that reads many small fields keeps its own buffer.
///
/// Nothing here throws; a file that cannot be read gives 0 bytes. One thread at a time may use read, seek,
/// open and close; readAt leaves the position alone and may run on several threads at once, also next to
/// read.
class File {
  public:
    File() = default;
    explicit File(std::string_view path) { open(path); }
    ~File() { close(); }
    File(File&& other) noexcept { swap(other); }
    File& operator=(File&& other) noexcept;

    /// Opens `path`, closing what was open before. The text is UTF-8; when it is not valid UTF-8 it is taken
    /// as the system's code page. POSIX tries the very bytes first, then each part of the path in its other
    /// form: Latin-1 bytes for UTF-8 text, UTF-8 for other bytes. Windows accepts both separators and paths up to 32,767 characters. Folders, pipes and devices do not open, so that no
    /// name inside an instrument can make a read wait.
    bool open(std::string_view path);
    void close() noexcept;
    bool isOpen() const { return handle_ != closed; }

    /// Bytes in the file when it was opened.
    std::uint64_t size() const { return size_; }
    std::uint64_t position() const { return position_; }

    /// Moves the read position; beyond the end is allowed and reads nothing.
    void seek(std::uint64_t position) { position_ = position; }

    /// Reads up to `count` bytes at the position and advances it. Returns fewer only at the end or on an
    /// error.
    std::size_t read(void* destination, std::size_t count);

    /// Reads up to `count` bytes at `offset`. Returns fewer only at the end or on an error.
    std::size_t readAt(std::uint64_t offset, void* destination, std::size_t count) const;

    /// Tells the system that reads will jump about: without this the kernel's read-ahead can pull in a whole
    /// sample for the sake of its first chunk. No effect on Windows.
    void adviseRandom() const;

    /// Tells the system that these bytes will be read soon; it fetches them while the caller goes on. No
    /// effect on Windows.
    void adviseNeeded(std::uint64_t offset, std::uint64_t count) const;

  private:
    static constexpr std::intptr_t closed = -1;

    void swap(File& other) noexcept;

    std::intptr_t handle_ = closed; // a file descriptor, or a Windows HANDLE
    std::uint64_t size_ = 0;
    std::uint64_t position_ = 0;
};

} // namespace zarno

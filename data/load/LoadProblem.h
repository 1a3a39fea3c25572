// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace zarno {

/// Why an instrument did not load, or what is wrong with one that did. A plain value: any thread.
struct LoadProblem {
    enum class Kind {
        None,
        NotFound,        ///< there is no such file
        CannotOpen,      ///< it is there, and the system does not open it: rights, or a folder of that name
        CannotRead,      ///< reading fails at `byte`: a fault of the disk or the network
        NoAnswer,        ///< the system has not given a read back for limits::stalledDiskMs
        NotAnInstrument, ///< none of the four bytes of the magic is right
        TooNew,          ///< `number` is the format version that the file states
        CutShort,        ///< the file ends at `byte`, before the instrument does
        NotLicensed,
        OutOfMemory,
        LimitExceeded, ///< of `detail` the file asks for more than `number`: see docs/limits.md
        Cancelled
    };

    Kind kind = Kind::None;
    std::string file;        ///< path of the instrument file, native form
    std::uint64_t byte = 0;  ///< offset in that file
    std::int64_t number = 0; ///< a version or a limit
    std::string detail;      ///< what was being read; of LimitExceeded what the limit counts

    explicit operator bool() const { return kind != Kind::None; }
};

/// One English sentence for the user, with a full stop: what happened to which file and, where the user can
/// do something, what. Valid UTF-8 for names in any encoding. Empty for Kind::None.
std::string sentence(const LoadProblem& problem);

/// A file asks for more than data/Limits.h allows. Thrown and caught inside data/load; not a lack of memory.
class LimitExceeded : public std::runtime_error {
  public:
    /// The file asks for more than `most` of `what`, which reads well after a number.
    LimitExceeded(std::uint64_t most, const char* what)
        : std::runtime_error(what)
        , most(static_cast<std::int64_t>(most)) {}

    const std::int64_t most;
};

} // namespace zarno

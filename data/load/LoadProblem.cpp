// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/LoadProblem.h"

#include "data/load/InstrumentFormat.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"

namespace zarno {
namespace {

// 1234567 becomes "1,234,567".
template <typename Number>
std::string grouped(Number number) {
    std::string digits = std::to_string(number);
    const std::size_t first = digits.front() == '-' ? 1 : 0;
    for (std::size_t end = digits.size(); end > first + 3; end -= 3)
        digits.insert(end - 3, 1, ',');
    return digits;
}

std::string afterColon(const std::string& detail) {
    return detail.empty() ? std::string() : ": " + toUtf8(detail);
}

} // namespace

std::string sentence(const LoadProblem& problem) {
    using Kind = LoadProblem::Kind;
    const std::string name = '"' + toUtf8(fileName(problem.file)) + '"';
    const std::string folder = toUtf8(parentPath(problem.file));
    switch (problem.kind) {
    case Kind::None:
        return {};
    case Kind::NotFound:
        return name + " was not found" + (folder.empty() ? "" : " in " + folder) + '.';
    case Kind::CannotOpen:
        return name + " cannot be opened" + (folder.empty() ? "" : " in " + folder) +
               ": check that it is a file that you may read.";
    case Kind::CannotRead:
        return name + " cannot be read from byte " + grouped(problem.byte) +
               " on: the disk or the network reports a fault.";
    case Kind::NoAnswer:
        return name + " cannot be read: its disk or network does not answer.";
    case Kind::NotAnInstrument:
        return name + " is not an instrument file.";
    case Kind::TooNew:
        return name + " was made for a newer version of the player: its format is " +
               grouped(problem.number) + ", and this version reads up to " + grouped(format::newestVersion) +
               '.';
    case Kind::CutShort:
        return name + " was cut short at byte " + grouped(problem.byte) + afterColon(problem.detail) +
               ". Copy or download it again.";
    case Kind::NotLicensed:
        return "The licence of " + name + " does not allow loading it.";
    case Kind::OutOfMemory:
        return "There is not enough memory to load " + name + '.';
    case Kind::LimitExceeded:
        return name + " asks for more than " + grouped(problem.number) + ' ' + toUtf8(problem.detail) +
               ", the most that the player allows.";
    case Kind::Cancelled:
        return "Loading " + name + " was cancelled.";
    }
    return {};
}

} // namespace zarno

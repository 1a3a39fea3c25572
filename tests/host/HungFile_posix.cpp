// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/HungFile.h"

#include <fstream>
#include <iterator>
#include <sys/syscall.h>
#include <unistd.h>

namespace zarno::test::hungFile {
namespace {

bool isHung(int file) {
    char path[512] = {};
    const auto link = "/proc/self/fd/" + std::to_string(file);
    return ::readlink(link.c_str(), path, sizeof path - 1) > 0 && std::string(path).ends_with(name);
}

} // namespace

// This program's own pread stands before the library's, for all modules.
void standBefore(const std::string&) {}

bool isLoaded(const std::string& modulePath) {
    std::ifstream maps("/proc/self/maps");
    const std::string text{std::istreambuf_iterator<char>(maps), {}};
    return text.find(modulePath) != std::string::npos;
}

} // namespace zarno::test::hungFile

extern "C" __attribute__((visibility("default"))) ssize_t pread(int file, void* to, size_t count, off_t at) {
    namespace hungFile = zarno::test::hungFile;
    if (hungFile::hangs && hungFile::isHung(file)) hungFile::wait();
    return ::syscall(SYS_pread64, file, to, count, at);
}

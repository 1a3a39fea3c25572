// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ThreadRole.h"

#if defined(ZARNO_THREAD_CHECKS)

#include <cstdio>
#include <cstdlib>

namespace zarno::thread {
namespace {

thread_local Role role = unknown;

const char* nameOf(Role which) {
    switch (which) {
    case unknown:
        return "unknown";
    case audio:
        return "audio";
    case loading:
        return "loading";
    case disk:
        return "disk";
    case message:
        return "message";
    case reader:
        return "reader";
    }
    return "?";
}

} // namespace

void mustBe(unsigned roles, std::source_location where) {
    if (role == unknown || (role & roles) != 0) return;
    std::fprintf(stderr, "%s:%u: %s called on the wrong thread: %s\n", where.file_name(), where.line(),
                 where.function_name(), nameOf(role));
    std::abort();
}

Role current() {
    return role;
}

Acts::Acts(Role now)
    : former_(role) {
    role = now;
}

Acts::~Acts() {
    role = former_;
}

} // namespace zarno::thread

#endif

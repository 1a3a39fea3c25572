// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ThreadRole.h"

#if defined(ZARNO_THREAD_CHECKS)

#include <cstdio>
#include <cstdlib>
#include <string>

namespace zarno::thread {
namespace {

thread_local Role role = unknown;

void endProcess(const char* complaint) {
    std::fprintf(stderr, "%s\n", complaint);
    std::abort();
}
void (*complain)(const char*) = endProcess;

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
    complain((std::string(where.file_name()) + ":" + std::to_string(where.line()) + ": " +
              where.function_name() + " called on the wrong thread: " + nameOf(role))
                 .c_str());
}

void onWrongThread(void (*handler)(const char*)) {
    complain = handler;
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

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fuzz/run/Target.h"

#include <cstdio>
#include <cstdlib>

namespace zarno::fuzz {

std::vector<Target>& targets() {
    static std::vector<Target> all;
    return all;
}

void require(bool kept, const char* promise) {
    if (kept) return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

} // namespace zarno::fuzz

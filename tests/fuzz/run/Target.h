// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

// A fuzz target is one way for hostile bytes to come in: what is done with them, and inputs to begin with. A
// file of this folder's parent holds one. It is built twice: into the replay program of every build, which
// tries the seeds and some thousand mutations of them, and, with -DZARNO_FUZZ=ON, into a libFuzzer program.
namespace zarno::fuzz {

struct Target {
    const char* name;
    int mutations;                       // that a replay tries: some seconds at the most
    void (*run)(std::string_view input); // to return is all that is asked; a broken promise aborts
    std::vector<std::string> (*seeds)();
    std::vector<std::string> words = {}; // that mean something in this kind of input
};

// All targets of this program. A target's file defines one `const Registered`.
std::vector<Target>& targets();
struct Registered {
    explicit Registered(Target target) { targets().push_back(std::move(target)); }
};

// Ends the program, with a message, when a promise was not kept.
void require(bool kept, const char* promise);

} // namespace zarno::fuzz

// SPDX-License-Identifier: GPL-3.0-or-later
// What libFuzzer calls. With ZARNO_FUZZ_SEEDS set to a folder the program writes its target's seeds there,
// and its words into FOLDER.dict, and ends.
#include "tests/fuzz/run/Target.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

using namespace zarno::fuzz;

void writeSeeds(const std::string& folder) {
    const Target& target = targets().front();
    int number = 0;
    for (const std::string& seed : target.seeds())
        std::ofstream(folder + "/seed-" + std::to_string(number++), std::ios::binary) << seed;
    std::ofstream dictionary(folder + ".dict");
    for (const std::string& word : target.words) {
        dictionary << '"';
        for (const char c : word) {
            char code[5];
            std::snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned char>(c));
            dictionary << code;
        }
        dictionary << "\"\n";
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    if (const char* folder = std::getenv("ZARNO_FUZZ_SEEDS")) {
        writeSeeds(folder);
        std::exit(0);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    targets().front().run({reinterpret_cast<const char*>(data), size});
    return 0;
}

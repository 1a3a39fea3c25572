// SPDX-License-Identifier: GPL-3.0-or-later
// usage: zarno_fuzz_replay [TARGET [FILE...]]
// Runs the seeds and mutations of them, always the same ones, through one target or through all; or the given
// files through the target. A failure leaves its input in the current folder and names it.
// ZARNO_TEST_ROUNDS: how many times as many mutations. ZARNO_TEST_SEED: others than the usual ones.
#include "data/Limits.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/Chance.h"
#include "tests/support/PeakMemory.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>
#endif

namespace zarno::fuzz {
namespace {

std::string current;
char currentFile[64];

// Whatever is broken by now: nothing is allocated here. The program then dies as it was about to.
void keepInput(int signal) {
    std::signal(signal, SIG_DFL);
#ifndef _WIN32
    const int file = ::creat(currentFile, 0644);
    if (file < 0 || ::write(file, current.data(), current.size()) < 0)
        std::fputs("its input is lost: ", stderr);
#endif
    std::fprintf(stderr, "%s: died of signal %d\n", currentFile, signal);
    std::raise(signal);
}

void begin(const Target& target) {
    std::snprintf(currentFile, sizeof currentFile, "crash-%s", target.name);
}

void runOne(const Target& target, std::string input) {
    current = std::move(input);
    // A block of its own: a read past the end is seen by the address sanitizer.
    const std::vector<char> exact(current.begin(), current.end());
#ifndef _WIN32
    // Of the processor's time: machines are busy. Ten times what is promised: sanitizers are slow.
    const itimerval most{{}, {10 * limits::inputSeconds, 0}};
    ::setitimer(ITIMER_PROF, &most, nullptr);
#endif
    target.run({exact.data(), exact.size()});
}

void overwrite(std::string& bytes, std::size_t place, std::string_view with) {
    bytes.replace(place, std::min(with.size(), bytes.size() - place), with);
}

std::string mutated(const Target& target, const std::vector<std::string>& seeds, Chance& chance) {
    const auto any = [&](const auto& list) {
        return list[static_cast<std::size_t>(chance.below(static_cast<int>(list.size())))];
    };
    std::string bytes = any(seeds);
    for (int edits = chance.between(1, 4); edits > 0 && !bytes.empty(); --edits) {
        const auto place = static_cast<std::size_t>(chance.below(static_cast<int>(bytes.size())));
        const auto length = static_cast<std::size_t>(chance.below(chance.of({2, 16, 300})));
        const std::uint32_t number = chance.of({0u, 1u, 0x7fffffffu, 0x80000000u, 0xffffffffu, 0x7f800000u,
                                                0xff800000u, 0x7fc00001u, 0x00010000u, 0x7f7fffffu});
        char raw[4];
        std::memcpy(raw, &number, 4);
        switch (chance.below(target.words.empty() ? 6 : 9)) {
        case 0:
            bytes[place] = static_cast<char>(bytes[place] ^ (1 << chance.below(8)));
            break;
        case 1:
            bytes[place] = static_cast<char>(chance.below(256));
            break;
        case 2:
            overwrite(bytes, place, {raw, 4});
            break;
        case 3:
            bytes.erase(place, chance.oneIn(4) ? std::string::npos : length);
            break;
        case 4:
            bytes.insert(place, bytes.substr(place, length));
            break;
        case 5:
            overwrite(bytes, place, any(seeds).substr(0, length));
            break;
        default:
            bytes.insert(place, any(target.words));
        }
    }
    return bytes;
}

int fromEnvironment(const char* name, int otherwise) {
    const char* text = std::getenv(name);
    return text ? std::atoi(text) : otherwise;
}

void replay(const Target& target) {
    const auto start = std::chrono::steady_clock::now();
    const auto seeds = target.seeds();
    for (const std::string& seed : seeds)
        runOne(target, seed);
    Chance chance(static_cast<std::uint32_t>(fromEnvironment("ZARNO_TEST_SEED", 20240229)));
    int mutations = target.mutations * fromEnvironment("ZARNO_TEST_ROUNDS", 1);
#ifdef _WIN32
    mutations /= 20; // files are slow there, and the code is the same
#endif
    for (int i = 0; i < mutations; ++i)
        runOne(target, mutated(target, seeds, chance));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::printf("%-16s %3zu seeds, %6d mutations, %.1f s\n", target.name, seeds.size(), mutations,
                took.count());
}

bool memoryIsWithinBudget() {
    std::printf("%ld MB at the peak\n", peakMegabytes());
    return peakMegabytes() <= limits::inputMegabytes;
}

int replayAll(const char* name, char** files, int fileCount) {
    bool found = false;
    for (const Target& target : targets()) {
        if (name && std::strcmp(name, target.name) != 0) continue;
        found = true;
        begin(target);
        for (int i = 0; i < fileCount; ++i) {
            std::ifstream in(files[i], std::ios::binary);
            runOne(target, {std::istreambuf_iterator<char>(in), {}});
        }
        if (fileCount == 0) replay(target);
    }
    if (!found) std::fprintf(stderr, "there is no target of this name\n");
    return found && memoryIsWithinBudget() ? 0 : 1;
}

} // namespace
} // namespace zarno::fuzz

// Sanitizers end the program in a way that keepInput sees.
extern "C" const char* __asan_default_options() {
    return "abort_on_error=1";
}
extern "C" const char* __ubsan_default_options() {
    return "abort_on_error=1:print_stacktrace=1";
}

int main(int argc, char** argv) {
    for (const int signal : {SIGABRT, SIGSEGV, SIGFPE, SIGILL})
        std::signal(signal, zarno::fuzz::keepInput);
#ifndef _WIN32
    std::signal(SIGPROF, zarno::fuzz::keepInput);
#endif
    return zarno::fuzz::replayAll(argc > 1 ? argv[1] : nullptr, argv + 2, std::max(argc - 2, 0));
}

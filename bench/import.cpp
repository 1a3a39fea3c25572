// SPDX-License-Identifier: GPL-3.0-or-later
// Time to import a library of waves next to the time to copy the samples that come out of it, file by file,
// both from the page cache. 1000 waves of 1 MB by default; ZARNO_BENCH_MB sets another size.
#include "bench/LargeInstrument.h"
#include "tools/import/Importer.h"
#include "tools/import/Readers.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <fstream>

#include <sys/resource.h>

namespace zarno::bench {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double copyAll(const std::vector<std::string>& waves, const fs::path& target) {
    fs::create_directories(target);
    std::vector<char> piece(1 << 16);
    const auto start = Clock::now();
    for (const std::string& wave : waves) {
        std::ifstream in(wave, std::ios::binary);
        std::ofstream out(target / fs::path(wave).filename(), std::ios::binary);
        while (in.read(piece.data(), static_cast<std::streamsize>(piece.size())), in.gcount() > 0)
            out.write(piece.data(), in.gcount());
    }
    const double seconds = secondsSince(start);
    fs::remove_all(target);
    return seconds;
}

double peakMegabytes() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

void importLibrary(benchmark::State& state, bool embed) {
    const char* wanted = std::getenv("ZARNO_BENCH_MB");
    const auto megabytes = static_cast<std::uint32_t>(wanted ? std::atoi(wanted) : 1000);
    const LargeInstrument library({megabytes, 1 << 20, false});
    const fs::path out = library.folder() / "imported";
    double copying = 0.0, importing = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        copying += copyAll(library.waves(), out);
        fs::create_directories(out);
        state.ResumeTiming();
        const auto start = Clock::now();
        ImportReport report;
        ImportOptions options;
        options.out = (out / "x.zse").string();
        options.embed = embed;
        importInstrument(readSoundFolder(library.folder().string(), {"s{robin}"}, report), options, report);
        importing += secondsSince(start);
        state.PauseTiming();
        fs::remove_all(out);
        state.ResumeTiming();
    }
    state.counters["ratio"] = importing / copying;
    state.counters["peakMB"] = peakMegabytes();
    state.SetBytesProcessed(state.iterations() * megabytes * std::int64_t{1 << 20});
}

BENCHMARK_CAPTURE(importLibrary, waves, false)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(importLibrary, embedded, true)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace zarno::bench

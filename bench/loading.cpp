// SPDX-License-Identifier: GPL-3.0-or-later
// Time to load an instrument into memory next to the time to read the same bytes, both from the page cache.
// 500 zones of 1 MB by default; ZARNO_BENCH_MB sets another size.
#include "bench/LargeInstrument.h"
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "platform/File.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

#include <malloc.h>

namespace zarno::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t blockBytes = 1 << 20;

std::uint32_t megabytes() {
    const char* wanted = std::getenv("ZARNO_BENCH_MB");
    return wanted != nullptr ? static_cast<std::uint32_t>(std::atoi(wanted)) : 500;
}

// Fresh pages for every allocation: else whoever runs second finds the first one's memory warm.
void useFreshPages() {
    mallopt(M_MMAP_THRESHOLD, 64 * 1024);
}

void load(benchmark::State& state, bool embedded) {
    useFreshPages();
    const LargeInstrument large({megabytes(), blockBytes, embedded});
    for (auto _ : state) {
        ZInstrument instrument;
        if (!loadInstrument(instrument, large.path())) return state.SkipWithError("not loaded");
        if (instrument.groups().front()->zones().size() != megabytes())
            return state.SkipWithError("zones missing");
        state.PauseTiming(); // giving the memory back is not loading
        instrument.clear();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * megabytes() * std::int64_t{blockBytes});
}

// What the machine needs at least: the same bytes into fresh memory.
void read(benchmark::State& state, bool embedded) {
    useFreshPages();
    const LargeInstrument large({megabytes(), blockBytes, embedded});
    for (auto _ : state) {
        std::vector<std::unique_ptr<char[]>> kept;
        for (const auto& entry : fs::directory_iterator(large.folder())) {
            File file(entry.path().string());
            for (std::uint64_t at = 0; at < file.size(); at += blockBytes) {
                kept.emplace_back(new char[blockBytes]);
                benchmark::DoNotOptimize(file.read(kept.back().get(), blockBytes));
            }
        }
        state.PauseTiming();
        kept.clear();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * megabytes() * std::int64_t{blockBytes});
}

BENCHMARK_CAPTURE(load, embedded, true)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK_CAPTURE(read, embedded, true)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK_CAPTURE(load, external, false)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK_CAPTURE(read, external, false)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

} // namespace
} // namespace zarno::bench

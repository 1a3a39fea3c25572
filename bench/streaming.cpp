// SPDX-License-Identifier: GPL-3.0-or-later
// Streaming next to what the disk delivers in the same run. Instruments are written to ZARNO_BENCH_FOLDER,
// else to the temporary folder, which must lie on a real disk, and put out of the page cache before each
// measurement.
#include "bench/BenchInstrument.h"
#include "bench/LargeInstrument.h"
#include "data/load/InstrumentLoader.h"
#include "data/stream/ChunkFill.h"
#include "platform/Clock.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

namespace zarno::bench {
namespace {

constexpr int rate = 44100, frameBytes = 4, waveHeaderBytes = 44;
constexpr std::size_t chunkBytes = 44100 * frameBytes; // of an instrument with default settings

// Out of the page cache.
void forget(const LargeInstrument& large) {
    for (const auto& entry : std::filesystem::directory_iterator(large.folder())) {
        const int descriptor = ::open(entry.path().c_str(), O_RDONLY);
        ::fdatasync(descriptor);
        ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
        ::close(descriptor);
    }
}

// A chunk of each wave, plainly: milliseconds.
double readChunks(const LargeInstrument& large, off_t offset) {
    std::vector<std::unique_ptr<char[]>> kept;
    const double began = systemClock().nowMs();
    for (const std::string& wave : large.waves()) {
        kept.emplace_back(new char[chunkBytes]);
        const int descriptor = ::open(wave.c_str(), O_RDONLY);
        ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_RANDOM);
        benchmark::DoNotOptimize(::pread(descriptor, kept.back().get(), chunkBytes, offset));
        ::close(descriptor);
    }
    return systemClock().nowMs() - began;
}

double residentMegabytes() {
    ::malloc_trim(0);
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

// Every voice a file of its own, all started in one block, played in real time.
void voicesFromDisk(benchmark::State& state) {
    constexpr int seconds = 8, block = 512;
    const auto voices = static_cast<std::uint32_t>(state.range(0));
    const LargeInstrument large(
        {voices, (seconds + 2) * rate * frameBytes, false, true, static_cast<std::int32_t>(voices)});
    forget(large);
    const double plainMs = readChunks(large, waveHeaderBytes + 4 * static_cast<off_t>(chunkBytes));
    ZInstrument instrument;
    if (!loadInstrument(instrument, large.path())) return state.SkipWithError("not loaded");
    forget(large);
    std::vector<float> left(block), right(block);
    float* outputs[] = {left.data(), right.data()};
    for (auto _ : state) {
        instrument.postEvent(midi::noteOn, 0, 60, 100, 0);
        const double began = systemClock().nowMs();
        for (int frame = 0; frame < seconds * rate; frame += block) {
            const double early = began + frame * 1000.0 / rate - systemClock().nowMs();
            if (early > 0) std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(early));
            instrument.renderBlock(outputs, 2, block);
        }
    }
    const StreamStats stats = instrument.streamStats();
    if (stats.voices != state.range(0)) state.SkipWithError("voices have ended");
    state.counters["late"] = static_cast<double>(stats.lateRefills);
    state.counters["refills"] = static_cast<double>(stats.refills);
    state.counters["needed_MB_s"] = voices * static_cast<double>(rate) * frameBytes / 1e6;
    state.counters["stream_MB_s"] = stats.megabytesPerSecond();
    state.counters["plain_MB_s"] = voices * static_cast<double>(chunkBytes) / (plainMs * 1000.0);
}
BENCHMARK(voicesFromDisk)
    ->RangeMultiplier(2)
    ->Range(64, 1024)
    ->Arg(384)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kSecond);

// From cold files; and one chunk of each of those files alone, cold too.
void loadStreaming(benchmark::State& state) {
    const auto zones = static_cast<std::uint32_t>(state.range(0));
    const LargeInstrument large({zones, 1 << 20, false, true});
    double plainMs = 0.0, memory = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        forget(large);
        plainMs += readChunks(large, waveHeaderBytes);
        forget(large);
        ZInstrument instrument;
        const double before = residentMegabytes();
        state.ResumeTiming();
        if (!loadInstrument(instrument, large.path())) return state.SkipWithError("not loaded");
        state.PauseTiming();
        memory = residentMegabytes() - before;
        instrument.clear();
        state.ResumeTiming();
    }
    state.counters["plain_ms"] = plainMs / static_cast<double>(state.iterations());
    state.counters["MB"] = memory;
    state.counters["preloads_MB"] = zones * static_cast<double>(chunkBytes) / 1e6;
}
BENCHMARK(loadStreaming)->Arg(2048)->Iterations(3)->UseRealTime()->Unit(benchmark::kMillisecond);

// The audio thread's share: voices on files that are in the page cache, next to the same voices in memory.
void renderStreamed(benchmark::State& state, bool streaming) {
    constexpr int voices = 64, block = 512;
    const LargeInstrument large({voices, 30 * rate * frameBytes, false, streaming, voices});
    ZInstrument instrument;
    if (!loadInstrument(instrument, large.path())) return state.SkipWithError("not loaded");
    instrument.alwaysAwaitBuffers(true);
    std::vector<float> left(block), right(block);
    float* outputs[] = {left.data(), right.data()};
    std::int64_t frames = 0;
    for (auto _ : state) {
        if (instrument.playingVoices() < voices) instrument.postEvent(midi::noteOn, 0, 61, 100, 0);
        instrument.renderBlock(outputs, 2, block);
        frames += instrument.playingVoices() * block;
    }
    state.counters["per_voice_frame"] = benchmark::Counter(
        static_cast<double>(frames), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(renderStreamed, memory, false);
BENCHMARK_CAPTURE(renderStreamed, streamed, true);

} // namespace
} // namespace zarno::bench

// SPDX-License-Identifier: GPL-3.0-or-later
// Streaming against what the disk delivers in the same run. Files are written to a folder of their own
// (ZARNO_BENCH_FOLDER, else the system's temporary folder: it must be on a real disk) and put out of the page
// cache before each measurement.
#include "bench/BenchInstrument.h"
#include "data/load/ZoneBuilder.h"
#include "platform/Clock.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace zarno::bench {
namespace {

constexpr int rate = 44100, frameBytes = 4, headerBytes = 44;
constexpr int chunk = 44100;

// Stereo 16-bit waves of noise, removed when the program ends.
class WaveFolder {
  public:
    WaveFolder() {
        const char* chosen = std::getenv("ZARNO_BENCH_FOLDER");
        const auto base = chosen ? std::filesystem::path(chosen) : std::filesystem::temp_directory_path();
        path_ = base / ("zarno-bench-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path_);
    }
    ~WaveFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    // As many files as asked for, of at least `seconds`; on disk, not in the page cache.
    const std::vector<std::string>& files(std::size_t count, int seconds) {
        while (files_.size() < count || seconds_ < seconds) {
            if (seconds_ < seconds) files_.clear(), seconds_ = seconds;
            files_.push_back((path_ / (std::to_string(files_.size()) + ".wav")).string());
            write(files_.back());
        }
        for (const std::string& file : files_)
            forget(file);
        return files_;
    }

  private:
    void write(const std::string& file) const {
        static const auto noise = makeNoise(std::uint64_t(rate) * 16, 2, true);
        const auto data = static_cast<std::uint32_t>(seconds_ * rate * frameBytes);
        const std::uint32_t riff = data + headerBytes - 8, rateField = rate, byteRate = rate * frameBytes,
                            sixteen = 16;
        const std::uint16_t format[] = {1, 2}, tail[] = {frameBytes, 16};
        std::ofstream out(file, std::ios::binary);
        const auto put = [&](const void* bytes, std::size_t n) {
            out.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(n));
        };
        put("RIFF", 4), put(&riff, 4), put("WAVEfmt ", 8), put(&sixteen, 4), put(format, 4),
            put(&rateField, 4);
        put(&byteRate, 4), put(tail, 4), put("data", 4), put(&data, 4), put(noise->shorts(), data);
    }
    static void forget(const std::string& file) {
        const int descriptor = ::open(file.c_str(), O_RDONLY);
        ::fdatasync(descriptor);
        ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
        ::close(descriptor);
    }

    std::filesystem::path path_;
    std::vector<std::string> files_;
    int seconds_ = 0;
};

WaveFolder& folder() {
    static WaveFolder one;
    return one;
}

double megabytesPerSecond(double bytes, double ms) {
    return bytes / (ms * 1000.0);
}

// One chunk from each file at the given place, plainly.
double readPlainly(const std::vector<std::string>& files, std::size_t count, off_t offset) {
    std::vector<char> bytes(static_cast<std::size_t>(chunk) * frameBytes);
    const double began = systemClock().nowMs();
    for (std::size_t i = 0; i < count; ++i) {
        const int descriptor = ::open(files[i].c_str(), O_RDONLY);
        ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_RANDOM);
        benchmark::DoNotOptimize(::pread(descriptor, bytes.data(), bytes.size(), offset));
        ::close(descriptor);
    }
    return systemClock().nowMs() - began;
}

ZGroup& addStreamed(ZInstrument& instrument, const std::vector<std::string>& files, std::size_t count) {
    ZGroup& group = instrument.createGroup("streamed");
    ZoneBuilder builder(instrument.settings());
    for (std::size_t i = 0; i < count; ++i) {
        auto zone = builder.fromWaveFile(files[i]);
        zone->record.rootKey = 60;
        zone->record.highKey = 127;
        zone->record.highVelocity = 127;
        builder.recordChanged(*zone);
        group.addZone(std::move(zone));
    }
    return group;
}

void setStreaming(ZInstrument& instrument, int voices) {
    instrument.settings().polyphony = voices;
    instrument.settings().streamBufferFrames = chunk;
    instrument.rebuildPool();
}

// Every voice a file of its own, all started in one block, played in real time.
void voicesFromDisk(benchmark::State& state) {
    const auto voices = static_cast<std::size_t>(state.range(0));
    constexpr int seconds = 8, block = 512;
    for (auto _ : state) {
        const auto& cold = folder().files(voices, seconds + 2);
        const double plainMs = readPlainly(cold, voices, headerBytes + 4 * chunk * frameBytes);
        ZInstrument instrument;
        setStreaming(instrument, static_cast<int>(voices));
        instrument.activateGroup(&addStreamed(instrument, cold, voices));
        folder().files(voices, seconds + 2);
        std::vector<float> left(block), right(block);
        float* outputs[] = {left.data(), right.data()};
        instrument.postEvent(midi::noteOn, 0, 60, 100, 0);
        const double began = systemClock().nowMs();
        double longestBlock = 0;
        for (int frame = 0; frame < seconds * rate; frame += block) {
            const double due = began + frame * 1000.0 / rate, now = systemClock().nowMs();
            if (due > now) std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(due - now));
            const double blockBegan = systemClock().nowMs();
            instrument.renderBlock(outputs, 2, block);
            longestBlock = std::max(longestBlock, systemClock().nowMs() - blockBegan);
        }
        const StreamStats stats = instrument.streamStats();
        state.counters["late"] = static_cast<double>(stats.lateRefills);
        state.counters["refills"] = static_cast<double>(stats.refills);
        state.counters["stream_MB_s"] = stats.megabytesPerSecond();
        state.counters["plain_MB_s"] =
            megabytesPerSecond(static_cast<double>(voices) * chunk * frameBytes, plainMs);
        state.counters["needed_MB_s"] = static_cast<double>(voices) * rate * frameBytes / 1e6;
        state.counters["longest_block_ms"] = longestBlock;
    }
}
BENCHMARK(voicesFromDisk)
    ->Arg(64)
    ->Arg(256)
    ->Arg(384)
    ->Arg(512)
    ->Arg(768)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kSecond);

} // namespace
} // namespace zarno::bench

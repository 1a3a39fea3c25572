// SPDX-License-Identifier: GPL-3.0-or-later
// Time to load an instrument into memory next to the time to read the same bytes, both from the page cache.
// 500 zones of 1 MB by default; ZARNO_BENCH_MB sets another size.
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "platform/File.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
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

template <typename T>
void put(std::ostream& out, const T& value) {
    out.write(reinterpret_cast<const char*>(&value), sizeof value);
}

void putText(std::ostream& out, const std::string& text) {
    out.write(text.c_str(), static_cast<std::streamsize>(text.size() + 1));
}

void putWave(const fs::path& path, const std::vector<char>& data) {
    std::ofstream out(path, std::ios::binary);
    out << "RIFF";
    put(out, std::uint32_t{36 + blockBytes});
    out << "WAVEfmt ";
    put(out, std::uint32_t{16});
    for (const std::uint16_t field : {1, 2})
        put(out, field); // PCM, stereo
    for (const std::uint32_t field : {44100u, 176400u})
        put(out, field);
    for (const std::uint16_t field : {4, 16})
        put(out, field); // bytes a frame, bits
    out << "data";
    put(out, blockBytes);
    out.write(data.data(), blockBytes);
}

// An instrument of many zones in a folder of its own, removed with this object.
class LargeInstrument {
  public:
    explicit LargeInstrument(bool embedded)
        : folder_(fs::temp_directory_path() / (embedded ? "zarno_bench_e" : "zarno_bench_x")) {
        fs::create_directories(folder_);
        const std::vector<char> data(blockBytes, 1);
        std::ofstream out(path(), std::ios::binary);
        writeHeader(out, embedded);
        for (std::uint32_t i = 0; i < megabytes(); ++i) {
            const std::string name = "s" + std::to_string(i) + ".wav";
            putText(out, name);
            if (embedded) {
                for (const std::uint32_t field : {2u, 44100u, 2u, 0u})
                    put(out, field);
                put(out, std::uint64_t{blockBytes / 4});
                out.write(data.data(), blockBytes);
            } else {
                putWave(folder_ / name, data);
            }
            ZoneRecord record;
            record.highKey = record.highVelocity = 127;
            record.endFrame = blockBytes / 4 - 1;
            put(out, record);
        }
    }
    ~LargeInstrument() { fs::remove_all(folder_); }

    std::string path() const { return (folder_ / "large.zse").string(); }
    const fs::path& folder() const { return folder_; }

  private:
    static void writeHeader(std::ostream& out, bool embedded) {
        out << "ZSE ";
        put(out, std::int32_t{215});
        put(out, static_cast<std::uint8_t>(embedded));
        putText(out, "Large");
        putText(out, "Large");
        InstrumentSettings settings;
        settings.streaming = settings.streamingStored = 0;
        put(out, settings);
        putText(out, "");
        put(out, std::int32_t{0}); // no picture
        putText(out, "");          // no layout
        put(out, std::int32_t{0}); // no licences
        put(out, std::int32_t{1}); // one group
        putText(out, "All");
        put(out, GroupRecord{});
        put(out, megabytes());
    }

    fs::path folder_;
};

// Fresh pages for every allocation: else whoever runs second finds the first one's memory warm.
void useFreshPages() {
    mallopt(M_MMAP_THRESHOLD, 64 * 1024);
}

void load(benchmark::State& state, bool embedded) {
    useFreshPages();
    const LargeInstrument large(embedded);
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
    const LargeInstrument large(embedded);
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

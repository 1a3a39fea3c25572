// SPDX-License-Identifier: GPL-3.0-or-later
// What a host waits for when it opens and closes the module beside a large library, by its parts: 500 instruments, the
// first of them streaming, 1,000 zones of 2 MB. Everything is put out of the page cache before each measurement, the
// module too; as the super-user the names of files with it. Real bytes throughout: 2 GB are written first.
#include "bench/LargeInstrument.h"
#include "data/load/InstrumentLoader.h"
#include "engine/InstrumentContents.h"
#include "platform/Clock.h"
#include "platform/Module.h"
#include "platform/Paths.h"
#include "shell/Library.h"
#include "tools/vsthost/HostedPlugin.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

namespace zarno::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t zones = 1000, bytesPerZone = 2 << 20, otherInstruments = 499, otherBytes = 100'000;
constexpr std::size_t chunkBytes = 44100 * 4; // of an instrument with default settings

// A copy of the module in a folder of its own, with its library and the user's folders.
class Site {
  public:
    Site()
        : folder_(large_.folder() / "site")
        , library_(folder_ / "Pack.instruments") {
        fs::create_directories(library_);
        fs::copy_file(joinPath(parentPath(zarno::modulePath()), "ZarnoSamplerPlayer.so"), module());
        fs::rename(large_.path(), large_.folder() / "all.zse");
        // Samples are found from the instrument's own folder.
        for (const std::string& wave : large_.waves())
            fs::rename(wave, library_ / fs::path(wave).filename());
        fs::rename(large_.folder() / "all.zse", library_ / "0 large.zse");
        addOthers();
        ::setenv("XDG_DATA_HOME", (folder_ / "data").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
        ::setenv("DISPLAY", ":65000", 1);
        ::sync();
    }

    std::string module() const { return folder_ / "Pack.so"; }
    std::string instrumentFolder() const { return library_; }
    std::string firstInstrument() const { return library_ / "0 large.zse"; }
    std::size_t waves() const { return large_.waves().size(); }

    // Out of the page cache, and the names of files where we may.
    void forget() const {
        for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
            if (!entry.is_regular_file()) continue;
            const int descriptor = ::open(entry.path().c_str(), O_RDONLY);
            ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
            ::close(descriptor);
        }
        std::ofstream("/proc/sys/vm/drop_caches") << 3;
    }

  private:
    void addOthers() {
        const LargeInstrument small({1, otherBytes, true});
        for (std::uint32_t i = 0; i < otherInstruments; ++i)
            fs::copy_file(small.path(), library_ / ("1 small " + std::to_string(i) + ".zse"));
    }

    const LargeInstrument large_{{zones, bytesPerZone, false, true}};
    const fs::path folder_, library_;
};

class Part {
  public:
    explicit Part(benchmark::State& state)
        : state_(state) {}
    void end(const char* name) {
        auto& counter = state_.counters[name];
        counter.flags = benchmark::Counter::kAvgIterations;
        counter.value += now() - began_;
        began_ = now();
    }

  private:
    static double now() { return systemClock().nowMs(); }
    benchmark::State& state_;
    double began_ = now();
};

// The bytes of the first instrument's preloads alone, one file after the other.
void readPreloads(const Site& site) {
    std::vector<char> chunk(chunkBytes);
    for (std::size_t i = 0; i < site.waves(); ++i) {
        const int descriptor = ::open((site.instrumentFolder() + "/s" + std::to_string(i) + ".wav").c_str(), O_RDONLY);
        ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_RANDOM);
        benchmark::DoNotOptimize(::pread(descriptor, chunk.data(), chunk.size(), 44));
        ::close(descriptor);
    }
}

void openAndClose(benchmark::State& state, bool cold) {
    static const Site site;
    const auto prepare = [&] {
        if (cold) site.forget();
    };
    for (auto _ : state) {
        state.PauseTiming();
        prepare();
        Part alone(state);
        if (Library::scan({site.instrumentFolder()}).entries.size() != otherInstruments + 1)
            return state.SkipWithError("not scanned");
        alone.end("scan_alone_ms");
        prepare();
        {
            Part load(state);
            InstrumentContents contents;
            if (!readInstrument(contents, site.firstInstrument(), {})) return state.SkipWithError("not loaded");
            load.end("first_instrument_alone_ms");
        }
        prepare();
        Part plain(state);
        readPreloads(site);
        plain.end("its_preloads_read_plainly_ms");
        prepare();
        state.ResumeTiming();

        std::string error;
        Part part(state);
        auto module = SharedModule::load(site.module(), error);
        part.end("link_ms");
        auto plugin = HostedPlugin::load(site.module(), {}, error);
        part.end("create_ms");
        if (!plugin || plugin->chunk().size() < 600) return state.SkipWithError("no instance");
        plugin.reset();
        part.end("destroy_ms");
        module.reset();
        part.end("unlink_ms");
    }
}
BENCHMARK_CAPTURE(openAndClose, cold, true)->Iterations(3)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openAndClose, warm, false)->Iterations(3)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zarno::bench

// SPDX-License-Identifier: GPL-3.0-or-later
// A host without a user: loads a plug-in module, says what it reports, plays songs through it, keeps its
// state.
#include "platform/Arguments.h"
#include "tools/common/SongReader.h"
#include "tools/common/WavWriter.h"
#include "tools/vsthost/HostWindow.h"
#include "tools/vsthost/HostedPlugin.h"
#include "tools/vsthost/PluginReport.h"
#include "tools/vsthost/SongPlayer.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>

#include <png.h>

namespace zarno {
namespace {

enum ExitCode { done = 0, badInput = 1, badUsage = 2 };
constexpr double longestLoad = 600.0; // seconds

struct Arguments {
    std::string module, song, wave, saveChunk, loadChunk, picture;
    HostedPlugin::Options host;
    bool info = false, json = false, realtime = false;
    int bits = 16, program = -1;
    double tail = 5.0, editorSeconds = 0.0;
    std::uint32_t seed = 0;
    bool hasSeed = false;
};

void declare(CLI::App& app, Arguments& arguments) {
    app.add_option("module", arguments.module, "The plug-in module")->required();
    app.add_flag("--info", arguments.info, "Print what the plug-in reports");
    app.add_flag("--json", arguments.json, "Print it as JSON");
    app.add_option("--midi", arguments.song, "Play this standard MIDI file");
    app.add_option("--wav", arguments.wave, "Write what is heard to this file");
    app.add_option("--rate", arguments.host.sampleRate, "Sample rate in Hz")
        ->check(CLI::Range(8000.0, 384000.0));
    app.add_option("--block", arguments.host.blockSize, "Samples a block")->check(CLI::Range(1, 65536));
    app.add_option("--bits", arguments.bits, "16, 24, or 32 for float")->check(CLI::IsMember({16, 24, 32}));
    app.add_option("--tail", arguments.tail, "Seconds after the song's end")->check(CLI::Range(0.0, 3600.0));
    app.add_option("--save-chunk", arguments.saveChunk, "Save the plug-in's state at the end");
    app.add_option("--load-chunk", arguments.loadChunk, "Restore a state first");
    app.add_option("--program", arguments.program, "Choose this instrument of the library");
    auto* editor = app.add_option("--editor", arguments.editorSeconds,
                                  "Open the editor for so many seconds, and while the song plays");
    app.add_option("--picture", arguments.picture, "Save what the editor shows at the end as PNG")
        ->needs(editor);
    app.add_flag(
        "--realtime", arguments.realtime,
        "Tell the plug-in that this is live playing, not a bounce; with the editor open, at its pace");
    app.add_option("--seed", arguments.seed, "Make the plug-in's random choices repeatable")
        ->each([&](const std::string&) { arguments.hasSeed = true; });
}

std::filesystem::path filePath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

int fail(const std::string& message) {
    std::fprintf(stderr, "vsthost: %s\n", message.c_str());
    return badInput;
}

bool restoreFrom(const std::string& path, HostedPlugin& plugin) {
    std::ifstream file(filePath(path), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || bytes.empty()) return false;
    plugin.restore({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    return true;
}

bool saveTo(const std::string& path, HostedPlugin& plugin) {
    const auto chunk = plugin.chunk();
    std::ofstream file(filePath(path), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(chunk.data()), static_cast<std::streamsize>(chunk.size()));
    return !file.flush().fail();
}

void print(const PlayedSong& played, double rate) {
    std::printf("played %.2f s, %d notes, peak %.2f dBFS, RMS %.2f dBFS, slowest block %.3f ms\n",
                static_cast<double>(played.frames) / rate, played.notes, toDecibels(played.levels.peak()),
                toDecibels(played.levels.rms()), played.slowestBlockMs);
}

int play(HostedPlugin& plugin, const Arguments& arguments) {
    std::string error;
    const auto song = readSong(arguments.song, error);
    if (!song) return fail(error);
    WavWriter wave;
    const bool writes = !arguments.wave.empty();
    if (writes && !wave.open(arguments.wave, static_cast<int>(arguments.host.sampleRate), 2,
                             static_cast<WavWriter::Format>(arguments.bits)))
        return fail("cannot write " + arguments.wave);
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    const bool isPaced = arguments.realtime && plugin.isEditorOpen();
    std::chrono::duration<double> heard{0.0};
    bool written = true;
    const auto played =
        playSong(plugin, *song, arguments.tail, [&](const float* const* channels, int frames) {
            written = !writes || wave.write(channels, frames);
            heard += std::chrono::duration<double>(frames / arguments.host.sampleRate);
            if (isPaced) std::this_thread::sleep_until(begin + heard);
            return written;
        });
    if (!written || !wave.close()) return fail("cannot write all of " + arguments.wave);
    print(played, arguments.host.sampleRate);
    return done;
}

bool savePicture(const Picture& picture, const std::string& path) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.format = PNG_FORMAT_RGB;
    png.width = static_cast<png_uint_32>(picture.width);
    png.height = static_cast<png_uint_32>(picture.height);
    png_alloc_size_t size = 0;
    if (png_image_write_to_memory(&png, nullptr, &size, 0, picture.pixels.data(), 0, nullptr) == 0)
        return false;
    std::vector<char> bytes(size);
    if (png_image_write_to_memory(&png, bytes.data(), &size, 0, picture.pixels.data(), 0, nullptr) == 0)
        return false;
    std::ofstream file(filePath(path), std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(size));
    return !file.flush().fail();
}

int showEditor(HostedPlugin& plugin, const Arguments& arguments) {
    std::string error;
    const auto window = HostWindow::open(plugin, error);
    if (!window) return fail(error);
    const auto size = plugin.editorSize();
    std::printf("editor open, %d x %d\n", size.width, size.height);
    std::future<int> song;
    if (!arguments.song.empty())
        song = std::async(std::launch::async, [&] { return play(plugin, arguments); });
    window->run(arguments.editorSeconds);
    while (song.valid() && song.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        window->run(0.02);
    if (!arguments.picture.empty() && !savePicture(window->picture(), arguments.picture))
        return fail("cannot write " + arguments.picture);
    return song.valid() ? song.get() : done;
}

int run(const Arguments& arguments) {
    std::string error;
    const auto plugin = HostedPlugin::load(arguments.module, arguments.host, error);
    if (!plugin) return fail(error);
    if (!arguments.loadChunk.empty() && !restoreFrom(arguments.loadChunk, *plugin))
        return fail("cannot read " + arguments.loadChunk);
    if (arguments.program >= 0) plugin->selectProgram(arguments.program);
    if (!plugin->waitForLoading(longestLoad)) return fail("the instrument is still loading");
    if (arguments.hasSeed && !plugin->seedRandom(arguments.seed)) return fail("the plug-in takes no seed");
    plugin->activate();
    if (arguments.info || arguments.json) {
        const auto report = askPlugin(*plugin);
        std::fputs((arguments.json ? reportAsJson(report) : reportAsText(report)).c_str(), stdout);
    }
    int result = done;
    if (arguments.editorSeconds > 0.0)
        result = showEditor(*plugin, arguments);
    else if (!arguments.song.empty())
        result = play(*plugin, arguments);
    if (result == done && !arguments.saveChunk.empty() && !saveTo(arguments.saveChunk, *plugin))
        return fail("cannot write " + arguments.saveChunk);
    return result;
}

} // namespace
} // namespace zarno

int main(int count, char** values) {
    CLI::App app{"Hosts a plug-in module as an audio workstation does", "vsthost"};
    zarno::Arguments arguments;
    zarno::declare(app, arguments);
    app.allow_windows_style_options(false); // a path may begin with a slash on Wine
    auto texts = zarno::utf8Arguments(count, values);
    texts.erase(texts.begin());
    std::reverse(texts.begin(), texts.end()); // the order its parser takes
    try {
        app.parse(texts);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? zarno::done : zarno::badUsage;
    }
    arguments.host.offline = !arguments.realtime;
    return zarno::run(arguments);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/SamplePath.h"
#include "platform/Paths.h"
#include "tools/zarno/Commands.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/InstrumentWriter.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/PackReport.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <thread>

namespace zarno {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr auto lookEvery = std::chrono::milliseconds(200);

struct Arguments {
    std::string folder, out;
    double seconds = 0.0;
    bool embed = false;
};

/// Packs a folder whenever a file in it changes.
class Watcher {
  public:
    explicit Watcher(const Arguments& arguments)
        : folder_(filePath(absolutePath(arguments.folder)))
        , out_(absolutePath(arguments.out))
        , options_(packOptions()) {
        options_.embed = arguments.embed;
    }

    void run(double seconds) {
        const auto begin = Clock::now();
        for (Files packed; seconds <= 0.0 || Clock::now() - begin < std::chrono::duration<double>(seconds);
             std::this_thread::sleep_for(lookEvery)) {
            Files now = files();
            if (now == packed) continue;
            pack();
            packed = std::move(now);
        }
    }

  private:
    using Files = std::map<fs::path, std::pair<fs::file_time_type, std::uintmax_t>>;

    // All but those that packing writes.
    Files files() const {
        Files found;
        std::error_code failed;
        for (fs::recursive_directory_iterator at(folder_, failed), end; !failed && at != end;
             at.increment(failed)) {
            std::error_code gone;
            if (written_.count(at->path()) != 0 || !at->is_regular_file(gone)) continue;
            const auto time = at->last_write_time(gone);
            const auto size = at->file_size(gone);
            if (!gone) found.emplace(at->path(), std::pair(time, size));
        }
        return found;
    }

    void pack() {
        try {
            PackNotes notes;
            const Model model = readInstrumentFolder(utf8Text(folder_), options_, notes);
            written_ = {filePath(out_), filePath(out_ + ".part")};
            for (const Model::Wave& wave : model.waves) {
                const std::string path =
                    fromBackslashForm(resolveSamplePath(wave.sample, toBackslashForm(out_)));
                written_.insert({filePath(path), filePath(path + ".part")});
            }
            writeInstrumentFile(model, out_);
            reportPacked(out_, notes);
        } catch (const MakerError& error) {
            std::cerr << "zarno: " << error.what() << '\n';
        }
        std::cout << "watching " << utf8Text(folder_) << std::endl;
    }

    const fs::path folder_;
    const std::string out_;
    PackOptions options_;
    std::set<fs::path> written_{filePath(out_), filePath(out_ + ".part")};
};

void watch(const Arguments& arguments) {
    if (!isFolder(arguments.folder)) throw MakerError(arguments.folder, "there is no such folder");
    Watcher(arguments).run(arguments.seconds);
}

} // namespace

void addWatchCommand(CLI::App& program) {
    auto arguments = std::make_shared<Arguments>();
    CLI::App* command = program.add_subcommand(
        "watch", "Pack and check a folder now, and again whenever a file in it changes");
    command->add_option("FOLDER", arguments->folder, "Holds instrument.json and what it names")->required();
    command->add_option("OUT", arguments->out, "The instrument file to write (*.zse)")->required();
    command->add_flag("--embed", arguments->embed, "Put the waves into the instrument file");
    command->add_option("--for", arguments->seconds, "Seconds until it ends; else Ctrl+C ends it")
        ->check(CLI::NonNegativeNumber);
    command->callback([arguments] { watch(*arguments); });
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Commands.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/Render.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace zarno {

void addRenderCommand(CLI::App& program) {
    auto options = std::make_shared<RenderOptions>();
    CLI::App* command = program.add_subcommand("render", "Play a song on an instrument into a wave file");
    command->add_option("INSTRUMENT", options->instrument, "The instrument file")->required();
    command->add_option("SONG", options->song, "A MIDI file")->required();
    command->add_option("OUT", options->out, "The wave file to write")->required();
    command->add_option("--rate", options->rate, "Sample rate in Hz")->check(CLI::Range(8000, 384000));
    command->add_option("--block", options->block, "Frames rendered at a time")->check(CLI::Range(1, 65536));
    command->add_option("--tail", options->tailSeconds, "Seconds behind the song's end, at most")
        ->check(CLI::NonNegativeNumber);
    command->add_option("--bits", options->bits, "16, 24, or 32 for floats")
        ->check(CLI::IsMember({16, 24, 32}));
    command->add_option("--seed", options->seed, "Makes random choices repeatable");
    command->add_flag("--realtime", options->realtime, "As a host that plays live, not one that bounces");
    command->add_flag("--stats", options->stats, "Say how streaming went");
    command->callback([options] {
        options->instrument = absolutePath(options->instrument);
        if (const int failed = render(*options)) throw CLI::RuntimeError(failed); // it has said why
    });
}

} // namespace zarno

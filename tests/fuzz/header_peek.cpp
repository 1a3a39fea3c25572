// SPDX-License-Identifier: GPL-3.0-or-later
// What a library reads of each file it lists: the same as the loader does.
#include "data/Bytes.h"
#include "data/load/InstrumentFile.h"
#include "shell/Library.h"
#include "tests/fuzz/run/Instruments.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/ScratchFolder.h"

namespace zarno::fuzz {
namespace {

void run(std::string_view input) {
    static const test::ScratchFolder folder("header_peek");
    const auto names = peekHeader(folder.write("x.zse", input));
    InstrumentFile whole;
    Bytes bytes(input.data(), input.size());
    const bool accepted = whole.parse(bytes) == InstrumentFile::Refusal::None;
    require(names.has_value() == accepted, "both refuse the same files");
    require(!names || (names->name == whole.name.text() && names->title == whole.title.text()),
            "both read the same names");
    const Library library = Library::scan({folder.path().string()});
    const bool listed = names && !names->name.empty() && !names->title.empty();
    require(library.entries.size() == (listed ? 1u : 0u), "it is listed when it has both names");
}

std::vector<std::string> seeds() {
    auto all = instrumentSeeds();
    all.resize(1);
    const std::string start = all[0].substr(0, 9);
    for (const int extra : {0, 1, 2}) // around the limit of a text, with and without its zero byte
        all.push_back(start + std::string(1024 + static_cast<std::size_t>(extra), 'n') +
                      std::string("\0t\0", 3));
    return all;
}

const Registered registered({"header_peek", 10000, run, seeds});

} // namespace
} // namespace zarno::fuzz

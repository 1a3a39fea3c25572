// SPDX-License-Identifier: GPL-3.0-or-later
// A sample's name and, in the second line, the path of its instrument.
#include "data/load/SamplePath.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"
#include "tests/fuzz/run/Target.h"

#include <algorithm>

namespace zarno::fuzz {
namespace {

void run(std::string_view input) {
    const std::string_view name = input.substr(0, input.find('\n'));
    const std::string_view instrument = input.substr(std::min(name.size() + 1, input.size()));
    const std::string path = resolveSamplePath(name, instrument);
    const std::string folder(instrument.substr(0, instrument.rfind('\\') + 1));
    require(path.size() <= name.size() + folder.size(), "a path has nothing that nobody wrote");
    if (path != name)
        require(path.find("..\\") == std::string::npos || folder.find("..\\") != std::string::npos,
                "no step up is left over from the name");

    const std::string native = fromBackslashForm(path);
    require(toBackslashForm(native) == toBackslashForm(fromBackslashForm(toBackslashForm(native))),
            "the two forms of a path stay what they are");
    require(joinPath(parentPath(native), fileName(native)).size() <= native.size() + 1,
            "folder and name are all of a path");
    require(fileName(native).starts_with(fileStem(native)), "a file's name begins with its stem");
    require(isValidUtf8(toUtf8(native)), "texts for people can be shown");
}

std::vector<std::string> seeds() {
    return {"Piano.wav\nC:\\Lib\\Inst\\Piano.zse",
            "..\\..\\Samples/Piano.wav\nC:\\Lib\\Inst\\Piano.zse",
            "lost\\..\\kept\\..\\a.wav\n\\home\\me\\x.zse",
            "D:/a.wav\n.\\Piano.zse",
            "...\\a.wav\nx.zse",
            "\\\\server\\a\xC3\xBC.wav\n",
            "\xFC\n\xE4\\"};
}

const Registered
    registered({"path_resolution", 100000, run, seeds, {"..\\", "../", "\\", "/", ":", ".", "\n"}});

} // namespace
} // namespace zarno::fuzz

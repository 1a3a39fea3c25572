// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Chance.h"
#include "tests/support/SfzFromMemory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>

namespace zarno {
namespace {

// ZARNO_MUTATIONS=10000 for the long form.
TEST(ImportMutations, SfzNeverCrashes) {
    const std::string words[] = {"<region>",
                                 "<group>",
                                 "<",
                                 ">",
                                 "=",
                                 "sample=",
                                 "lokey=",
                                 "hikey=-1 ",
                                 "key=",
                                 "seq_length=",
                                 "lorand=",
                                 "loop_mode=loop_continuous ",
                                 "#include \"a\"",
                                 "#define $A ",
                                 "$A",
                                 "/*",
                                 "*/",
                                 "//",
                                 "\n",
                                 "99999999999999999999",
                                 "nan",
                                 "-1",
                                 "sw_last=",
                                 "off_by=",
                                 "group=",
                                 "end=",
                                 "offset=",
                                 "pitch_keytrack=1e308 ",
                                 "xfin_lokey=",
                                 "locc",
                                 "\xff",
                                 std::string(1, '\0')};
    const std::string seed =
        "<control>default_path=a/ note_offset=1\n#define $A 60\n<global>amp_veltrack=50\n"
        "<group>sw_last=24 group=1 off_by=2 seq_length=2\n<region>sample=a b.wav key=$A "
        "seq_position=2 lovel=1 hivel=90 volume=-3.5 offset=5 end=400 trigger=release "
        "rt_decay=3\n<region>sample=c.wav lorand=0.5 loop_start=3 locc64=3 tune=50 // x\n";
    const char* asked = std::getenv("ZARNO_MUTATIONS");
    const int count = asked ? std::atoi(asked) : 500;
    Chance chance(7);
    int played = 0;
    for (int i = 0; i < count; ++i) {
        std::string text = seed;
        for (int edits = chance.between(1, 12); edits > 0; --edits) {
            const auto at = static_cast<std::size_t>(chance.below(static_cast<int>(text.size()) + 1));
            const std::string& word = words[chance.below(static_cast<int>(std::size(words)))];
            switch (chance.below(4)) {
            case 0:
                text.insert(at, word);
                break;
            case 1:
                text.replace(at, static_cast<std::size_t>(chance.below(8)), word);
                break;
            case 2:
                text.erase(at, static_cast<std::size_t>(chance.below(20)));
                break;
            default:
                text.insert(at, 1, static_cast<char>(chance.bits()));
                break;
            }
        }
        played += test::parseSfzFromMemory(text) > 0 ? 1 : 0;
    }
    EXPECT_GT(played, count / 2);
}

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/SamplePath.h"

#include <gtest/gtest.h>

namespace zarno {
namespace {

TEST(SamplePaths, AreRelativeToTheInstrument) {
    const std::string piano = "C:\\Lib\\Inst\\Piano.zse";
    struct Case {
        std::string name, instrument, expected;
    };
    const Case cases[] = {
        {"Piano.wav", piano, "C:\\Lib\\Inst\\Piano.wav"},
        {"..\\..\\Samples/Piano.wav", piano, "C:\\Samples\\Piano.wav"},
        {"Samples/soft/a.wav", piano, "C:\\Lib\\Inst\\Samples\\soft\\a.wav"},
        {"..\\..\\..\\..\\..\\a.wav", piano, "C:\\a.wav"}, // no folder above the drive
        {"lost\\..\\kept\\..\\a.wav", piano, "C:\\a.wav"}, // steps count wherever they stand
        {"../Samples/a.wav", piano, "C:\\Lib\\Samples\\a.wav"},
        {"...\\a.wav", piano, "C:\\Lib\\a.wav"}, // holds a step, too
        {"..", piano, "C:\\Lib\\Inst\\.."},
        // As they stand:
        {"", piano, ""},
        {"\\\\server\\a/b.wav", piano, "\\\\server\\a/b.wav"},
        {"D:/a.wav", piano, "D:/a.wav"},
        {"a.wav", ".\\Piano.zse", "a.wav"},
        {"..\\a.wav", "..\\Piano.zse", "..\\a.wav"},
        // Relative all the same: the test for the full stop is on the instrument's path.
        {".\\a.wav", piano, "C:\\Lib\\Inst\\.\\a.wav"},
        // From other systems, and with nothing to cut.
        {"a/b.wav", "\\home\\me\\x.zse", "\\home\\me\\a\\b.wav"},
        {"..\\..\\..\\a.wav", "\\home\\x.zse", "\\a.wav"},
        {"a.wav", "x.zse", "a.wav"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(resolveSamplePath(c.name, c.instrument), c.expected) << c.name;
}

} // namespace
} // namespace zarno

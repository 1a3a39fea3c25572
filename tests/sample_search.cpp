// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SampleSearch.h"
#include "shell/SearchPath.h"
#include "tests/support/TempFolder.h"

#include "platform/Paths.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zarno::test {
namespace {

class SampleSearching : public testing::Test {
  protected:
    TempFolder folder;
    int stepsLeft = 1000000;
    int stepsTaken = 0;
    ManualClock clock{1.0};

    SampleSearch search(const std::string& chosen, const std::string& home = {}) {
        return SampleSearch(
            {chosen, home}, {}, [this] { return ++stepsTaken <= stepsLeft; }, clock);
    }
    std::string at(const std::string& name) const {
        std::string path = folder / name;
        if (std::filesystem::path::preferred_separator == '\\') std::replace(path.begin(), path.end(), '/', '\\');
        return path;
    }
};

TEST_F(SampleSearching, BelowItsOwnFolderFirstThenBelowTheChosenOne) {
    folder.write("own/deep/er/C4.wav", "own");
    folder.write("chosen/x/C4.wav", "chosen");
    folder.write("chosen/x/D4.wav", "chosen");
    auto searching = search(at("chosen"), at("home"));
    EXPECT_EQ(searching.find(at("own/C4.wav")), at("own/deep/er/C4.wav"));
    EXPECT_EQ(searching.find(at("own/D4.wav")), at("chosen/x/D4.wav"));
    EXPECT_EQ(searching.find(at("own/E4.wav")), "");
    EXPECT_EQ(searching.find(""), "");
}

TEST_F(SampleSearching, HomeIsLookedIntoOnlyWhenNothingWasChosen) {
    folder.write("home/a/C4.wav", "");
    folder.write("chosen/D4.wav", "");
    EXPECT_EQ(search("", at("home")).find(at("gone/C4.wav")), at("home/a/C4.wav"));
    EXPECT_EQ(search(at("chosen"), at("home")).find(at("gone/C4.wav")), "");
}

// What separates patterns elsewhere is a letter like any other here; an exact match goes before one in
// another case.
TEST_F(SampleSearching, NamesAreComparedAsTheyAre) {
    folder.write("chosen/a/Piano, C4; soft*.wav", "");
    folder.write("chosen/a/LOUD \xC3\x9C.WAV", "");
    folder.write("chosen/b/kick.wav", "");
    folder.write("chosen/z/Kick.wav", "");
    auto searching = search(at("chosen"));
#ifndef _WIN32
    EXPECT_EQ(searching.find("/gone/Piano, C4; soft*.wav"), at("chosen/a/Piano, C4; soft*.wav"));
    EXPECT_EQ(searching.find("/gone/loud \xC3\xBC.wav"), at("chosen/a/LOUD \xC3\x9C.WAV"));
#endif
    EXPECT_EQ(searching.find("/gone/*.wav"), "");
    EXPECT_EQ(searching.find("/gone/Kick.wav"), at("chosen/z/Kick.wav"));
    EXPECT_EQ(searching.find("/gone/KICK.wav"), at("chosen/b/kick.wav"));
}

// On POSIX either form may lie on the disk; the reply is what the disk has.
TEST_F(SampleSearching, NamesFromBeforeUnicodeAreFound) {
    folder.write("chosen/Fl\xC3\xB6te.wav", "");
    auto searching = search(at("chosen"));
    EXPECT_EQ(searching.find("/gone/Fl\xF6te.wav"), at("chosen/Fl\xC3\xB6te.wav"));
#ifndef _WIN32
    folder.write("raw \xFC/Caf\xE9.wav", "");
    auto inRaw = search(at("raw \xC3\xBC"));
    for (const char* name : {"/gone/Caf\xE9.wav", "/gone/caf\xC3\xA9.WAV"})
        EXPECT_EQ(inRaw.find(name), at("raw \xC3\xBC") + "/Caf\xE9.wav");
#endif
}

TEST_F(SampleSearching, AThousandSamplesCostOneWalk) {
    for (int i = 0; i < 1000; ++i)
        folder.write("chosen/" + std::to_string(i % 20) + "/" + std::to_string(i) + ".wav", "");
    auto searching = search(at("chosen"));
    for (int i = 0; i < 1000; ++i)
        EXPECT_NE(searching.find("/gone/" + std::to_string(i) + ".wav"), "");
    EXPECT_EQ(searching.find("/gone/1000.wav"), "");
    EXPECT_LE(stepsTaken, 30);
}

TEST_F(SampleSearching, EndsWhenToldOrOutOfTime) {
    for (int i = 0; i < 50; ++i)
        folder.write("chosen/" + std::to_string(i) + "/x.wav", "");
    stepsLeft = 10;
    EXPECT_EQ(search(at("chosen")).find("/gone/y.wav"), "");
    EXPECT_LE(stepsTaken, 12);

    stepsLeft = 1000000;
    stepsTaken = 0;
    SampleSearch slow(
        {at("chosen"), ""}, {},
        [this] {
            ++stepsTaken;
            return true;
        },
        systemClock());
    EXPECT_EQ(slow.find("/gone/y.wav"), "");
    EXPECT_GT(stepsTaken, 50);
    SampleSearch noTime({at("chosen"), ""}, {0.0, 1e9}, {}, clock);
    EXPECT_EQ(noTime.find("/gone/x.wav"), "");
}

TEST_F(SampleSearching, WatchedItTakesTenSecondsWhereNobodyChose) {
    struct : Clock {
        double nowMs() const override { return now += 1000.0; } // so long does each folder take
        mutable double now = 0.0;
    } slow;
    for (int i = 0; i < 50; ++i)
        folder.write("home/" + std::to_string(i) + "/x.wav", "");
    SampleSearch watched(
        {"", at("home")}, SampleSearch::whileWatched, [this] { return ++stepsTaken > 0; }, slow);
    EXPECT_EQ(watched.find(at("gone/y.wav")), "");
    EXPECT_EQ(stepsTaken, 1 + 11) << "one for what is gone";
    watched.choose(at("home"));
    EXPECT_EQ(watched.find(at("gone/y.wav")), "");
    EXPECT_EQ(stepsTaken, 12 + 41) << "now somebody has; what was seen is not read again";
}

TEST_F(SampleSearching, APlaceMayNameSeveralFolders) {
    folder.write("a;b/C4.wav", "");
    folder.write("c/D4.wav", "");
    folder.write("d; e/E4.wav", "");
    const std::string several = " " + at("c") + " ;; \"" + at("d; e") + "\";" + at("gone");
    EXPECT_EQ(searchPathFolders(several), (std::vector{at("c"), at("d; e"), at("gone")}));
    EXPECT_EQ(searchPathFolders(at("a;b")), std::vector{at("a;b")}) << "a folder of that name is there";
    EXPECT_EQ(searchPathFolders(" ; "), std::vector<std::string>());
    EXPECT_EQ(search(several).find(at("gone/E4.wav")), at("d; e/E4.wav"));
}

#ifndef _WIN32
TEST_F(SampleSearching, LinksAndRootsAreNotWalked) {
    folder.write("elsewhere/C4.wav", "");
    std::filesystem::create_directories(folder / "chosen");
    std::filesystem::create_directory_symlink(folder / "elsewhere", folder / "chosen/link");
    std::filesystem::create_directory_symlink(folder / "chosen", folder / "chosen/circle");
    EXPECT_EQ(search(at("chosen")).find("/gone/C4.wav"), "");
    stepsTaken = 0;
    EXPECT_EQ(search("", "/").find("/no such file as this.wav"), "");
    EXPECT_EQ(stepsTaken, 0);
}
#endif

} // namespace
} // namespace zarno::test

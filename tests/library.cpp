// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Library.h"
#include "platform/File.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarno {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

class Libraries : public testing::Test {
  protected:
    void add(const std::string& path, const std::string& title) {
        InstrumentBuilder file;
        file.name = title;
        folder.write(path, file.bytes());
    }
    Library scan(Library::ScanLimits limits = {}, const Clock& clock = systemClock()) {
        return Library::scan(
            {folder / "lib"}, [this] { ++answers; }, limits, clock);
    }
    static std::vector<std::string> titles(const Library& library) {
        std::vector<std::string> all;
        for (const auto& entry : library.entries)
            all.push_back(entry.title);
        return all;
    }

    TempFolder folder;
    int answers = 0;
};

TEST_F(Libraries, TextsFromBeforeUnicodeAreUtf8) {
    add("lib/a.zse", "Fl\xF6te");
#ifndef _WIN32
    add("lib/\xFC/caf\xE9.zse", "\xC3\x9C");
#endif
    const Library library = scan();
    EXPECT_EQ(library.entries.at(0).title, "Fl\xC3\xB6te");
#ifndef _WIN32
    EXPECT_EQ(library.entries.at(1).path, folder / "lib/\xC3\xBC/caf\xC3\xA9.zse");
    EXPECT_TRUE(File(library.entries[1].path).isOpen());
    EXPECT_EQ(library.indexOfFileName("/elsewhere/caf\xE9.zse"), 1);
#endif
    EXPECT_EQ(library.leftOut, "");
}

TEST_F(Libraries, AStandInMayDifferInCaseWhenNoneHasTheVeryName) {
    add("lib/a/Lantern Tines.zse", "upper");
    add("lib/b/lantern tines.zse", "lower");
    add("lib/c/\xC3\x9C.zse", "umlaut");
    const Library library = scan();
    EXPECT_EQ(library.indexOfFileName("C:\\moved\\lantern tines.zse"), 1);
    EXPECT_EQ(library.indexOfFileName("C:\\moved\\LANTERN TINES.ZSE"), 0);
    EXPECT_EQ(library.indexOfFileName("C:\\moved\\\xC3\xBC.zse"), 2);
    EXPECT_EQ(library.indexOfFileName("lantern.zse"), -1);
}

TEST_F(Libraries, AScanEndsAtItsLimitsAndSaysSo) {
    for (int i = 0; i < 20; ++i)
        add("lib/" + std::to_string(10 + i) + "/a.zse", std::to_string(i));
    const Library some = scan({25, 1e9});
    EXPECT_THAT(titles(some), ElementsAre("0", "1", "2", "3", "4", "5"));
    EXPECT_THAT(some.leftOut, HasSubstr("more than 25 files and folders"));

    struct : Clock {
        double nowMs() const override { return now += 1000.0; }
        mutable double now = 0.0;
    } slow;
    const Library late = scan({1000, 30000.0}, slow);
    EXPECT_EQ(titles(late).size(), 9u) << "a second for each folder and each file";
    EXPECT_THAT(late.leftOut, HasSubstr("more than 30 seconds"));

    std::string deep = "lib";
    for (int i = 0; i <= limits::libraryDepth; ++i)
        deep += "/d";
    add(deep + "/a.zse", "deep");
    EXPECT_THAT(scan().leftOut, HasSubstr("64 levels deep"));
}

#ifndef _WIN32
TEST_F(Libraries, LinksAreFollowedOnceAndNeverToWhatHoldsTheLibrary) {
    const auto link = [&](const std::string& name, const std::filesystem::path& target) {
        std::filesystem::create_directory_symlink(target, folder / name);
    };
    add("lib/a.zse", "a");
    add("lib/real/b.zse", "b");
    add("elsewhere/c.zse", "c");
    add("further/deep/d.zse", "d");
    link("lib/again", folder / "lib/real");
    link("lib/out", folder / "elsewhere");
    link("elsewhere/back", folder / "lib");
    link("elsewhere/more", folder / "further/deep");
    link("lib/near", folder / "further");
    const Library library = scan();
    EXPECT_THAT(titles(library), ElementsAre("a", "b", "d", "c"));
    EXPECT_EQ(library.leftOut, "");

    answers = 0;
    link("lib/root", "/");
    link("lib/up", folder.path());
    const Library circles = scan();
    EXPECT_THAT(titles(circles), ElementsAre("a", "b", "d", "c"));
    EXPECT_EQ(circles.leftOut, "The link \"" + (folder / "lib/root") +
                                   "\" leads to a folder that holds the library, and is not followed.");
    EXPECT_LT(answers, 30);
}
#endif

} // namespace
} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/InstrumentLoader.h"
#include "data/load/LicenceCheck.h"
#include "engine/InstrumentContents.h"
#include "engine/ZSEDelegate.h"
#include "platform/Machine.h"
#include "platform/Paths.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace zarno {
namespace {

using namespace test;
using Kind = LoadProblem::Kind;

struct Refuse final : LicenceCheck, ZSEDelegate {
    bool allows(const std::vector<std::string>&, const std::string&, ZSEDelegate*) override { return false; }
    bool loadProgress(float, const char*, const char*) override { return false; }
    void groupsChanged() override {}
    void reportMessage(const char*, char*) override {}
    void settingsChanged() override {}
    void requestLicenceText(char*) override {}
};

class LoadProblems : public testing::Test {
  protected:
    LoadResult read(const std::string& path) {
        InstrumentContents contents;
        return readInstrument(contents, path, options);
    }
    // The kind, whether the instrument loads, and the sentence.
    void expect(const LoadResult& got, Kind kind, bool loads, const std::string& words) {
        EXPECT_EQ(got.problem.kind, kind);
        EXPECT_EQ(got.loaded, loads);
        EXPECT_EQ(sentence(got.problem), words);
    }
    std::string write(const InstrumentBuilder& instrument) {
        return folder.write("x.zse", instrument.bytes());
    }

    TempFolder folder;
    InstrumentBuilder file;
    LoadOptions options;
    Refuse refuse;
};

TEST_F(LoadProblems, SayWhichFileAndWhatHappened) {
    const std::string place = folder.path().string();
    expect(read(write(file)), Kind::None, true, "");
    expect(read(folder / "absent.zse"), Kind::NotFound, false,
           "\"absent.zse\" was not found in " + place + ".");
    expect(read(place), Kind::CannotOpen, false,
           "\"" + fileName(place) + "\" cannot be opened in " + parentPath(place) +
               ": check that it is a file that you may read.");
    expect(read(folder.write("caf\xE9.zse", "RIFF")), Kind::NotAnInstrument, false,
           "\"caf\xC3\xA9.zse\" is not an instrument file.");
    file.version = 1216;
    expect(
        read(write(file)), Kind::TooNew, false,
        "\"x.zse\" was made for a newer version of the player: its format is 1,216, and this version reads "
        "up to 215.");
}

TEST_F(LoadProblems, WhatEndedReadingEarlyIsToldOfAnInstrumentThatLoads) {
    file.layout = std::string(5000, '-');
    const std::size_t end = file.head().size() - 4 - 1;
    const std::string path = folder.write("x.zse", file.bytes().substr(0, end));
    expect(read(path), Kind::CutShort, true,
           "\"x.zse\" was cut short at byte 5,623: the file ends in the layout text. Copy or download it "
           "again.");
    options.opened = [&] { std::filesystem::resize_file(path, 100); };
    expect(read(path), Kind::CannotRead, true,
           "\"x.zse\" cannot be read from byte 20 on: the disk or the network reports a fault.");
    options.opened = {};
    file.licenceCount = INT32_MAX;
    expect(read(write(file)), Kind::LimitExceeded, true,
           "\"x.zse\" asks for more than 65,536 licence texts, the most that the player allows.");
}

TEST_F(LoadProblems, RefusalsAndCancelledLoads) {
    file.storage = 1;
    file.groups = {{"G", {}, {zone("a", block(2, 44100, 1, 2, "abcd"))}, {}}};
    options.delegate = &refuse;
    expect(read(write(file)), Kind::Cancelled, false, "Loading \"x.zse\" was cancelled.");
    options.licence = &refuse;
    expect(read(write(file)), Kind::NotLicensed, false,
           "The licence of \"x.zse\" does not allow loading it.");
}

// A sparse file that claims a sample as large as the machine's memory.
TEST_F(LoadProblems, ASampleLargerThanTheShareOfMemoryIsALimitAndNoLackOfMemory) {
    const auto bytes = physicalMemory();
    file.storage = 1;
    file.settings.sixteenBitStored = 1;
    file.settings.streamingStored = 0;
    file.groups = {{"G", {}, {zone("a", block(2, 44100, 1, static_cast<std::int64_t>(bytes / 2), ""))}, {}}};
    const std::string path = write(file);
    std::filesystem::resize_file(path, bytes + 100000);
    const LoadResult result = read(path);
    expect(result, Kind::LimitExceeded, false, sentence(result.problem));
    EXPECT_NE(sentence(result.problem).find(" megabytes of memory for its samples, "), std::string::npos);
    EXPECT_EQ(result.problem.number, static_cast<std::int64_t>(bytes / 100 * 75 / 1000000));
}

} // namespace
} // namespace zarno

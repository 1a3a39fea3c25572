// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"
#include "platform/Folder.h"
#include "platform/Machine.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

namespace zarno {
namespace {

class PlatformFiles : public testing::Test {
  protected:
    void SetUp() override {
        // Several builds may run the same test at the same time.
        folder_ = fs::temp_directory_path() / ("zarno-platform-" + std::to_string(std::random_device()()));
        fs::create_directories(folder_);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(ofAnyLength(folder_), ignored);
    }

    // For the standard library, whose Windows calls end at 260 characters without the prefix.
    static fs::path ofAnyLength(fs::path path) {
#ifdef _WIN32
        return L"\\\\?\\" + path.make_preferred().native();
#else
        return path;
#endif
    }
    static void write(const fs::path& path, const std::string& bytes) {
        std::ofstream(ofAnyLength(path), std::ios::binary) << bytes;
    }
    static std::string utf8(const fs::path& path) {
        const auto text = path.u8string();
        return {text.begin(), text.end()};
    }
    static std::string firstBytes(const std::string& path) {
        File file(path);
        std::string bytes(64, '\0');
        bytes.resize(file.read(bytes.data(), bytes.size()));
        return bytes;
    }

    fs::path folder_;
};

TEST_F(PlatformFiles, NamesOutsideAsciiOpen) {
    const auto path = folder_ / fs::path(u8"Flöte – ピアノ 🎹.wav");
    write(path, "reed");
    EXPECT_EQ(firstBytes(utf8(path)), "reed");
    EXPECT_TRUE(isRegularFile(utf8(path)));
    EXPECT_EQ(fileStem(utf8(path)), "Flöte – ピアノ 🎹");
}

TEST_F(PlatformFiles, NamesFromBeforeUnicodeOpen) {
    write(folder_ / fs::path(u8"Flöte.wav"), "reed");
    const auto latin1 = utf8(folder_) + "/Fl\xF6te.wav";
    EXPECT_EQ(firstBytes(latin1), "reed");
    EXPECT_TRUE(isRegularFile(latin1));
#ifndef _WIN32 // each part of a path may be in its own encoding
    fs::create_directories(folder_ / "alt \xFC" / "n\u00F6u");
    write(folder_ / "alt \xFC" / "n\u00F6u" / "\xE9.wav", "raw");
    for (const char* name : {"/alt \u00FC/n\u00F6u/\u00E9.wav", "/alt \xFC/n\xF6u/\xE9.wav"}) {
        EXPECT_EQ(firstBytes(utf8(folder_) + name), "raw");
        EXPECT_TRUE(isRegularFile(utf8(folder_) + name));
        EXPECT_NE(fileIdentity(utf8(folder_) + name), "");
    }
    EXPECT_EQ(listFolder(utf8(folder_) + "/alt \u00FC/n\u00F6u").at(0).name, "\xE9.wav");
    EXPECT_EQ(toUtf8Path("/alt \xFC/n\u00F6u/\xE9.wav"), "/alt \u00FC/n\u00F6u/\u00E9.wav");
    EXPECT_FALSE(isRegularFile(utf8(folder_) + "/alt \u00FC/\u30D4.wav"));
#endif
}

TEST_F(PlatformFiles, PathsBeyondTheClassicLimitOpen) {
    auto deep = folder_;
    while (deep.native().size() < 400) {
        deep /= "a folder with quite a long name";
        fs::create_directory(ofAnyLength(deep));
    }
    const auto path = deep / "note.wav";
    write(path, "long");
    EXPECT_EQ(firstBytes(utf8(path)), "long");
    EXPECT_TRUE(isRegularFile(utf8(path)));
    EXPECT_EQ(firstBytes(utf8(deep) + "/../" + utf8(deep.filename()) + "/./note.wav"), "long");

    // mingw's remove_all gives up on such a depth.
    for (auto at = path; at != folder_; at = at.parent_path())
        fs::remove(ofAnyLength(at));
}

TEST_F(PlatformFiles, OnlyRegularFilesOpen) {
    EXPECT_FALSE(File(utf8(folder_)).isOpen());
    EXPECT_FALSE(File(utf8(folder_ / "missing.wav")).isOpen());
    EXPECT_FALSE(File("").isOpen());
    EXPECT_FALSE(File(std::string_view("a\0b", 3)).isOpen());
#ifndef _WIN32
    EXPECT_FALSE(File("/dev/zero").isOpen());
#endif
    EXPECT_TRUE(isFolder(utf8(folder_)));
    EXPECT_FALSE(isRegularFile(utf8(folder_)));
    EXPECT_FALSE(pathExists(utf8(folder_ / "missing.wav")));
}

TEST_F(PlatformFiles, PositionsBeyondFourGigabytesAreExact) {
    const auto path = folder_ / "sparse.bin";
    constexpr std::uint64_t size = (std::uint64_t{5} << 30) + 3;
    write(path, "");
    fs::resize_file(path, size - 4);
    std::ofstream(path, std::ios::binary | std::ios::app) << "tail";

    File file(utf8(path));
    ASSERT_EQ(file.size(), size);
    std::array<char, 8> bytes{};
    file.seek(size - 4);
    EXPECT_EQ(file.read(bytes.data(), 8), 4u);
    EXPECT_EQ(std::string(bytes.data(), 4), "tail");
    EXPECT_EQ(file.position(), size);
    EXPECT_EQ(file.read(bytes.data(), 8), 0u);
    file.seek(~std::uint64_t{0} - 2);
    EXPECT_EQ(file.read(bytes.data(), 8), 0u);
}

TEST_F(PlatformFiles, MovedFilesKeepTheirPlaceAndCloseOnce) {
    write(folder_ / "a", "abcdef");
    write(folder_ / "b", "uvwxyz");
    File a(utf8(folder_ / "a"));
    char byte = 0;
    ASSERT_EQ(a.read(&byte, 1), 1u);
    File b(utf8(folder_ / "b"));
    b = std::move(a);
    EXPECT_EQ(b.read(&byte, 1), 1u);
    EXPECT_EQ(byte, 'b');
    EXPECT_FALSE(a.isOpen());
    EXPECT_EQ(a.read(&byte, 1), 0u);
    EXPECT_TRUE(b.open(utf8(folder_ / "b")));
    EXPECT_EQ(b.position(), 0u);
}

TEST_F(PlatformFiles, PositionalReadsFromManyThreadsDoNotDisturbEachOther) {
    std::string bytes(1 << 16, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 7 + (i >> 8));
    write(folder_ / "shared.bin", bytes);
    const File file(utf8(folder_ / "shared.bin"));
    file.adviseRandom();

    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (unsigned reader = 0; reader < 4; ++reader) {
        readers.emplace_back([&, reader] {
            std::array<char, 100> chunk{};
            for (std::size_t at = reader * 31; at + chunk.size() <= bytes.size(); at += 97) {
                const bool good = file.readAt(at, chunk.data(), chunk.size()) == chunk.size() &&
                                  bytes.compare(at, chunk.size(), chunk.data(), chunk.size()) == 0;
                wrong += good ? 0 : 1;
            }
        });
    }
    for (auto& reader : readers)
        reader.join();
    EXPECT_EQ(wrong, 0);
}

TEST(PlatformPaths, TextForms) {
    EXPECT_EQ(toBackslashForm("/home/anna/Piano.zse"), "\\home\\anna\\Piano.zse");
    EXPECT_EQ(parentPath(fileName("/a/b")), "");
    EXPECT_EQ(parentPath("/a"), "/");
    EXPECT_EQ(parentPath("/a/b"), "/a");
    EXPECT_EQ(fileName("/a/b/"), "");
    EXPECT_EQ(fileStem("x/.hidden"), ".hidden");
    EXPECT_EQ(fileStem("x.y/Grand.v2.zse"), "Grand.v2");
    EXPECT_EQ(joinPath("", "a.wav"), "a.wav");
    EXPECT_EQ(joinPath("x/", "a.wav"), "x/a.wav");
#ifdef _WIN32
    EXPECT_EQ(fromBackslashForm("C:\\a\\b.wav"), "C:\\a\\b.wav");
    EXPECT_EQ(parentPath("C:\\a"), "C:\\");
    EXPECT_EQ(joinPath("C:\\x", "a.wav"), "C:\\x\\a.wav");
#else
    EXPECT_EQ(fromBackslashForm("\\home\\anna\\Piano.zse"), "/home/anna/Piano.zse");
    EXPECT_EQ(joinPath("/x", "a.wav"), "/x/a.wav");
#endif
}

TEST(PlatformText, OnlyWellFormedUtf8IsTakenAsUtf8) {
    for (const char* good : {"", "plain", "Flöte", "ピアノ", "🎹", "\x7F", "\xED\x9F\xBF", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(isValidUtf8(good)) << good;
    for (const char* bad : {"\x80", "Fl\xF6te", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80",
                            "\xF4\x90\x80\x80", "\xF0\x80\x80\x80", "\xFF", "\xE3\x83", "\xC3\xC3"})
        EXPECT_FALSE(isValidUtf8(bad)) << testing::PrintToString(bad);
    EXPECT_EQ(utf8FromLatin1("Fl\xF6te\xFF"), "Flöteÿ");
    EXPECT_TRUE(isValidUtf8(toUtf8("\x80\xF6\xFF")));
    EXPECT_EQ(latin1FromUtf8("Fl\u00F6te\u00FF"), "Fl\xF6te\xFF");
    EXPECT_EQ(latin1FromUtf8("\u0100") + latin1FromUtf8("\xF6"), "");
}

} // namespace
} // namespace zarno

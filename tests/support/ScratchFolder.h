// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace zarno::test {

// A fresh folder, removed behind it.
class ScratchFolder {
  public:
    explicit ScratchFolder(std::string name) {
        for (char& c : name)
            if (c == '/') c = '-';
        name += '-' + std::to_string(std::random_device()()); // another program may be using the name
        path_ = std::filesystem::temp_directory_path() / ("zarno-" + name);
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    std::string operator/(const std::string& name) const { return text(path_ / native(name)); }

    std::string write(const std::string& name, std::string_view bytes) const {
        const auto file = path_ / native(name);
        std::filesystem::create_directories(file.parent_path());
#ifndef _WIN32 // there a file that is still open would only be marked for removal, and not be replaceable
        std::filesystem::remove(file); // some file systems flush a file that is replaced in place
#endif
        std::ofstream(file, std::ios::binary) << bytes;
        return text(file);
    }

    std::string read(const std::string& name) const {
        std::ifstream file(path_ / native(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    // Names are UTF-8 on every system; on POSIX any bytes.
#ifdef _WIN32
    static std::filesystem::path native(const std::string& name) {
        try {
            return std::u8string(name.begin(), name.end());
        } catch (const std::system_error&) { // not UTF-8
            return name;
        }
    }
    static std::string text(const std::filesystem::path& path) {
        const auto utf8 = path.u8string();
        return {utf8.begin(), utf8.end()};
    }
#else
    static const std::string& native(const std::string& name) { return name; }
    static std::string text(const std::filesystem::path& path) { return path.string(); }
#endif

    std::filesystem::path path_;
};

} // namespace zarno::test

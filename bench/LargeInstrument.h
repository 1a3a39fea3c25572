// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zarno::bench {

// An instrument file of many zones, all on all keys, each with a stereo 16-bit sample of its own, in a folder
// that is removed with this object. The folder lies in ZARNO_BENCH_FOLDER, else among the temporary files.
class LargeInstrument {
  public:
    struct Form {
        std::uint32_t zones = 1;
        std::uint32_t bytesPerZone = 1 << 20;
        bool embedded = false;
        bool streaming = false;
        std::int32_t polyphony = 32;
    };

    explicit LargeInstrument(const Form& form)
        : form_(form)
        , folder_(base() / (form.embedded ? "zarno_bench_e" : "zarno_bench_x")) {
        std::filesystem::create_directories(folder_);
        const std::vector<char> data(form_.bytesPerZone, 1);
        std::ofstream out(path(), std::ios::binary);
        writeHeader(out);
        for (std::uint32_t i = 0; i < form_.zones; ++i) {
            const std::string name = "s" + std::to_string(i) + ".wav";
            putText(out, name);
            if (form_.embedded) {
                for (const std::uint32_t field : {2u, 44100u, 2u, 0u})
                    put(out, field);
                put(out, std::uint64_t{form_.bytesPerZone / 4});
                out.write(data.data(), form_.bytesPerZone);
            } else {
                waves_.push_back((folder_ / name).string());
                putWave(waves_.back(), data);
            }
            ZoneRecord record;
            record.rootKey = 60;
            record.highKey = record.highVelocity = 127;
            record.endFrame = form_.bytesPerZone / 4 - 1;
            put(out, record);
        }
    }
    ~LargeInstrument() { std::filesystem::remove_all(folder_); }

    std::string path() const { return (folder_ / "large.zse").string(); }
    const std::filesystem::path& folder() const { return folder_; }
    const std::vector<std::string>& waves() const { return waves_; } // of the external form

  private:
    template <typename T>
    static void put(std::ostream& out, const T& value) {
        out.write(reinterpret_cast<const char*>(&value), sizeof value);
    }
    static void putText(std::ostream& out, const std::string& text) {
        out.write(text.c_str(), static_cast<std::streamsize>(text.size() + 1));
    }
    static std::filesystem::path base() {
        const char* chosen = std::getenv("ZARNO_BENCH_FOLDER");
        return chosen != nullptr ? std::filesystem::path(chosen) : std::filesystem::temp_directory_path();
    }

    static void putWave(const std::string& path, const std::vector<char>& data) {
        std::ofstream out(path, std::ios::binary);
        const auto bytes = static_cast<std::uint32_t>(data.size());
        out << "RIFF";
        put(out, 36 + bytes);
        out << "WAVEfmt ";
        put(out, std::uint32_t{16});
        for (const std::uint16_t field : {1, 2})
            put(out, field); // PCM, stereo
        for (const std::uint32_t field : {44100u, 176400u})
            put(out, field);
        for (const std::uint16_t field : {4, 16})
            put(out, field); // bytes a frame, bits
        out << "data";
        put(out, bytes);
        out.write(data.data(), bytes);
    }

    void writeHeader(std::ostream& out) const {
        out << "ZSE ";
        put(out, std::int32_t{215});
        put(out, static_cast<std::uint8_t>(form_.embedded));
        putText(out, "Large");
        putText(out, "Large");
        InstrumentSettings settings;
        settings.streaming = settings.streamingStored = form_.streaming;
        settings.polyphony = settings.polyphonyStored = form_.polyphony;
        put(out, settings);
        putText(out, "");
        put(out, std::int32_t{0}); // no picture
        putText(out, "");          // no layout
        put(out, std::int32_t{0}); // no licences
        put(out, std::int32_t{1}); // one group
        putText(out, "All");
        put(out, GroupRecord{});
        put(out, form_.zones);
    }

    Form form_;
    std::filesystem::path folder_;
    std::vector<std::string> waves_;
};

} // namespace zarno::bench

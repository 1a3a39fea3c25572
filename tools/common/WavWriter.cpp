// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/common/WavWriter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>

namespace zarno {
namespace {

constexpr std::uint32_t headerBytes = 44;
constexpr std::uint16_t pcmTag = 1;
constexpr std::uint16_t floatTag = 3;

template <typename Value>
void append(std::vector<char>& bytes, Value value, int count = sizeof(Value)) {
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<char>(static_cast<std::uint32_t>(value) >> (8 * i)));
}

void append(std::vector<char>& bytes, const char (&tag)[5]) {
    bytes.insert(bytes.end(), tag, tag + 4);
}

std::int32_t rounded(float value, float scale) {
    const float scaled = std::clamp(value, -1.0f, 1.0f) * scale;
    return static_cast<std::int32_t>(std::lrint(std::min(scaled, scale - 1.0f)));
}

} // namespace

bool WavWriter::open(const std::string& path, int sampleRate, int channels, Format format) {
    close();
    sampleRate_ = sampleRate;
    channels_ = channels;
    format_ = format;
    dataBytes_ = 0;
    const std::u8string utf8(path.begin(), path.end());
    file_.open(std::filesystem::path(utf8), std::ios::binary | std::ios::trunc);
    writeHeader();
    return file_.good();
}

void WavWriter::appendSample(float value) {
    switch (format_) {
    case Format::Int16:
        return append(bytes_, rounded(value, 32768.0f), 2);
    case Format::Int24:
        return append(bytes_, rounded(value, 8388608.0f), 3);
    case Format::Float32:
        return append(bytes_, std::bit_cast<std::uint32_t>(value));
    }
}

bool WavWriter::write(const float* const* samples, int frames) {
    bytes_.clear();
    for (int frame = 0; frame < frames; ++frame)
        for (int channel = 0; channel < channels_; ++channel)
            appendSample(samples[channel][frame]);
    if (dataBytes_ + bytes_.size() + headerBytes > UINT32_MAX) return false;
    file_.write(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
    if (file_.good()) dataBytes_ += bytes_.size();
    return file_.good();
}

void WavWriter::writeHeader() {
    const int bits = static_cast<int>(format_);
    const int frameBytes = channels_ * bits / 8;
    const auto data = static_cast<std::uint32_t>(dataBytes_);
    bytes_.clear();
    append(bytes_, "RIFF");
    append(bytes_, data + headerBytes - 8 + data % 2);
    append(bytes_, "WAVE");
    append(bytes_, "fmt ");
    append(bytes_, std::uint32_t{16});
    append(bytes_, format_ == Format::Float32 ? floatTag : pcmTag);
    append(bytes_, static_cast<std::uint16_t>(channels_));
    append(bytes_, static_cast<std::uint32_t>(sampleRate_));
    append(bytes_, static_cast<std::uint32_t>(sampleRate_ * frameBytes));
    append(bytes_, static_cast<std::uint16_t>(frameBytes));
    append(bytes_, static_cast<std::uint16_t>(bits));
    append(bytes_, "data");
    append(bytes_, data);
    file_.write(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
}

bool WavWriter::close() {
    if (!file_.is_open()) return true;
    if (dataBytes_ % 2 != 0) file_.put(0);
    file_.seekp(0);
    writeHeader();
    file_.close();
    return !file_.fail();
}

} // namespace zarno

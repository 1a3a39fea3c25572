// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/InstrumentUnpacker.h"

#include "data/Bytes.h"
#include "data/load/SamplePath.h"
#include "platform/File.h"
#include "platform/Paths.h"
#include "platform/Utf8.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/ModelJson.h"
#include "tools/zarno/PanelSource.h"
#include "tools/zarno/WaveCopy.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

namespace zarno {
namespace {

namespace fs = std::filesystem;

std::string_view imageExtension(const std::vector<std::uint8_t>& image) {
    const std::string_view start(reinterpret_cast<const char*>(image.data()),
                                 std::min<std::size_t>(image.size(), 4));
    if (start == "\x89PNG") return ".png";
    if (start.starts_with("\xff\xd8")) return ".jpg";
    if (start == "GIF8") return ".gif";
    return ".bin";
}

// "samples/0007 piano": what a sample name ends in, so far as every system allows it in a file name.
std::string fileNameFor(const std::string& sampleName, std::size_t number) {
    constexpr std::size_t longest = 80;
    std::string name = toUtf8(fileStem(fromBackslashForm(toBackslashForm(sampleName))));
    while (name.size() > longest)
        do
            name.pop_back();
        while ((name.back() & 0xC0) == 0x80); // not inside a character
    for (char& c : name)
        if (static_cast<unsigned char>(c) < 0x20 || std::strchr("<>:\"/\\|?*", c)) c = '_';
    const std::string digits = std::to_string(number);
    return "samples/" + std::string(4 - std::min<std::size_t>(4, digits.size()), '0') + digits + ' ' + name;
}

class Unpacker {
  public:
    Unpacker(const std::string& path, const std::string& folder, const UnpackOptions& options)
        : path_(absolutePath(path))
        , folder_(absolutePath(folder))
        , options_(options)
        , in_(path) {}

    UnpackNotes run();

  private:
    void parse();
    void write(const std::string& name, const std::string& head, std::uint64_t offset, std::uint64_t bytes);
    void write(const std::string& name, const void* data, std::size_t bytes);
    void layout();
    void blocks();
    bool fitsWave(const SampleBlock& block) const;
    void copySamples();
    bool copySample(const std::string& sampleName);
    std::vector<std::uint8_t> trailing();

    const std::string path_, folder_;
    const UnpackOptions options_;
    const File in_;
    InstrumentFile file_;
    FolderFiles files_;
    UnpackNotes notes_;
};

void Unpacker::parse() {
    if (!in_.isOpen()) throw MakerError(path_, describe(InstrumentFile::Refusal::CannotOpen));
    Bytes bytes(in_);
    const auto refusal = file_.parse(bytes);
    if (refusal != InstrumentFile::Refusal::None) throw MakerError(path_, describe(refusal));
    if (file_.incomplete)
        notes_.incomplete = "incomplete at offset " + std::to_string(file_.incomplete->offset) + ": " +
                            file_.incomplete->reason;
}

// Writes `head` and then a stretch of the instrument file.
void Unpacker::write(const std::string& name, const std::string& head, std::uint64_t offset,
                     std::uint64_t bytes) {
    const fs::path target = filePath(joinPath(folder_, name));
    fs::create_directories(target.parent_path());
    std::ofstream out(target, std::ios::binary);
    out << head;
    std::vector<char> chunk(1 << 20);
    while (bytes > 0 && out) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, chunk.size()));
        if (in_.readAt(offset, chunk.data(), wanted) != wanted)
            throw MakerError(path_, "the file cannot be read");
        out.write(chunk.data(), static_cast<std::streamsize>(wanted));
        offset += wanted;
        bytes -= wanted;
    }
    out.close();
    if (!out) throw MakerError(utf8Text(target), "the file cannot be written");
}

void Unpacker::write(const std::string& name, const void* data, std::size_t bytes) {
    write(name, std::string(static_cast<const char*>(data), bytes), 0, 0);
}

// A wave says all that the block's header does, but for data of another width or kind than the header's.
bool Unpacker::fitsWave(const SampleBlock& block) const {
    const int width = file_.settings.sixteenBitStored != 0 ? 2 : 4;
    return block.header.bytesPerSample == width && block.header.frames >= 0 && block.header.channels >= 1 &&
           block.header.channels <= 2 && block.dataBytes < UINT32_MAX - waveHeaderBytes;
}

void Unpacker::blocks() {
    // A block whose data is cut belongs to a zone that was not read.
    if (file_.incomplete && !file_.blocks.empty() &&
        file_.blocks.back().position + sizeof(SampleBlockHeader) + file_.blocks.back().dataBytes >=
            in_.size())
        file_.blocks.pop_back();
    for (std::size_t i = 0; i < file_.blocks.size(); ++i) {
        const SampleBlock& block = file_.blocks[i];
        FolderFiles::Sample sample;
        sample.raw = !fitsWave(block);
        if (!sample.raw || block.dataBytes > 0) {
            sample.file = fileNameFor(block.name, i + 1) + (sample.raw ? ".raw" : ".wav");
            const SampleBlockHeader& header = block.header;
            const bool floats = header.bytesPerSample == 4;
            write(sample.file,
                  sample.raw ? ""
                             : waveHeader(header.channels, header.bytesPerSample, floats, header.sampleRate,
                                          block.dataBytes),
                  block.position + sizeof block.header, block.dataBytes);
        }
        files_.samples.push_back(sample);
    }
}

bool Unpacker::copySample(const std::string& sampleName) {
    const auto place = [&](const std::string& instrument) {
        return fromBackslashForm(resolveSamplePath(sampleName, toBackslashForm(instrument)));
    };
    const fs::path from = filePath(place(path_));
    const fs::path to = filePath(place(joinPath(folder_, std::string(instrumentJsonName))));
    const bool inside = utf8Text(to.lexically_normal()).starts_with(joinPath(folder_, ""));
    std::error_code failed;
    if (!inside || !fs::is_regular_file(from, failed)) return false;
    fs::create_directories(to.parent_path());
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, failed);
    if (failed) throw MakerError(utf8Text(to), "the file cannot be written");
    return true;
}

void Unpacker::copySamples() {
    std::set<std::string> names;
    for (const GroupEntry& group : file_.groups)
        for (const ZoneEntry& zone : group.zones)
            names.emplace(zone.sample.text());
    for (const std::string& name : names)
        if (!copySample(name)) notes_.notCopied.push_back(name);
}

// In its readable form where that says all of it.
void Unpacker::layout() {
    const std::string& layout = file_.layout.bytes;
    if (layout.empty()) return;
    const auto source = panelSourceOf(layout);
    std::string& name = source ? files_.layoutSource : files_.layout;
    name = source ? "panel.xml" : "layout.xml";
    const std::string& text = source ? source->xml : layout;
    write(name, text.data(), text.size());
    if (!source) return;
    for (const PanelSource::Picture& picture : source->pictures)
        write(picture.file, picture.bytes.data(), picture.bytes.size());
}

std::vector<std::uint8_t> Unpacker::trailing() {
    std::vector<std::uint8_t> rest;
    Bytes bytes(in_);
    bytes.seek(file_.endOffset);
    if (!file_.incomplete) bytes.readBlock(rest, bytes.left());
    return rest;
}

UnpackNotes Unpacker::run() {
    parse();
    const std::string json = joinPath(folder_, std::string(instrumentJsonName));
    if (!options_.overwrite && pathExists(json)) throw MakerError(json, "this is there already");
    fs::create_directories(filePath(folder_));
    layout();
    if (!file_.image.empty()) {
        files_.panel = "panel" + std::string(imageExtension(file_.image));
        write(files_.panel, file_.image.data(), file_.image.size());
    }
    blocks();
    if (options_.copySamples && !file_.isEmbedded()) copySamples();
    const std::string text = modelToJson(file_, files_, trailing()).dump(1) + '\n';
    write(std::string(instrumentJsonName), text.data(), text.size());
    return notes_;
}

} // namespace

UnpackNotes unpackInstrument(const std::string& path, const std::string& folder,
                             const UnpackOptions& options) {
    try {
        return Unpacker(path, folder, options).run();
    } catch (const fs::filesystem_error& error) {
        throw MakerError(utf8Text(error.path1()), error.code().message());
    }
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/InstrumentWriter.h"

#include "data/Limits.h"
#include "data/load/SamplePath.h"
#include "platform/Paths.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/Model.h"

#include <filesystem>
#include <fstream>
#include <ostream>

namespace zarno {
namespace {

class Writer {
  public:
    Writer(const Model& model, std::ostream& out)
        : model_(model)
        , out_(out)
        , written_(model.file.blocks.size(), false) {}

    void write() {
        header();
        value(model_.file.groupCount);
        for (const GroupEntry& entry : model_.file.groups)
            group(entry);
        bytes(model_.trailing.data(), model_.trailing.size());
        if (!out_) throw MakerError({}, "the file cannot be written");
    }

  private:
    void bytes(const void* data, std::size_t count) {
        out_.write(static_cast<const char*>(data), static_cast<std::streamsize>(count));
    }
    template <typename T>
    void value(const T& field) {
        bytes(&field, sizeof field);
    }
    void text(const StoredText& text, std::size_t limit, const char* what);
    void header();
    void group(const GroupEntry& group);
    void zone(const ZoneEntry& zone);
    void block(std::size_t index);

    const Model& model_;
    std::ostream& out_;
    std::vector<bool> written_; // blocks
};

void Writer::text(const StoredText& text, std::size_t limit, const char* what) {
    if (text.bytes.find('\0') != std::string::npos) throw MakerError(what, "a text cannot hold a zero byte");
    if (text.terminated ? text.bytes.size() > limit : text.bytes.size() != limit + 1)
        throw MakerError(what, "a text has at most " + std::to_string(limit) + " bytes");
    bytes(text.bytes.data(), text.bytes.size());
    if (text.terminated) value('\0');
}

void Writer::header() {
    const InstrumentFile& file = model_.file;
    value(file.magic);
    value(file.version);
    value(file.storage);
    text(file.name, limits::nameBytes, "name");
    text(file.title, limits::nameBytes, "title");
    value(file.settings);
    text(file.remark, limits::nameBytes, "text");
    value(file.imageSize);
    bytes(file.image.data(), file.image.size());
    text(file.layout, limits::layoutBytes, "layout");
    value(file.licenceCount);
    for (const StoredText& licence : file.licences)
        text(licence, limits::nameBytes, "licence");
}

void Writer::group(const GroupEntry& group) {
    text(group.name, limits::nameBytes, "group name");
    value(group.record);
    value(group.zoneCount);
    for (const ZoneEntry& entry : group.zones)
        zone(entry);
}

void Writer::zone(const ZoneEntry& zone) {
    text(zone.sample, limits::nameBytes, "sample name");
    if (model_.file.isEmbedded() && !written_.at(zone.block)) block(zone.block);
    value(zone.record);
}

void Writer::block(std::size_t index) {
    const SampleBlock& block = model_.file.blocks[index];
    written_[index] = true;
    value(block.header);
    const auto start = out_.tellp();
    model_.frames.at(index)(out_);
    if (out_ && static_cast<std::uint64_t>(out_.tellp() - start) != block.dataBytes)
        throw MakerError(block.name, "the sample has another length than its header says");
}

void replaceFile(const std::string& path, const std::function<void(std::ostream&)>& write) {
    const std::filesystem::path target = filePath(path), partial = filePath(path + ".part");
    std::error_code ignored;
    try {
        if (target.has_parent_path()) std::filesystem::create_directories(target.parent_path(), ignored);
        std::ofstream out(partial, std::ios::binary);
        if (!out) throw MakerError(path, "the file cannot be made");
        write(out);
        out.close();
        if (!out) throw MakerError(path, "the file cannot be written");
        std::filesystem::rename(partial, target);
    } catch (...) {
        std::filesystem::remove(partial, ignored);
        throw;
    }
}

} // namespace

void writeInstrument(const Model& model, std::ostream& out) {
    Writer(model, out).write();
}

void writeInstrumentFile(const Model& model, const std::string& path) {
    for (const Model::Wave& wave : model.waves) {
        const std::string instrument = toBackslashForm(absolutePath(path));
        replaceFile(fromBackslashForm(resolveSamplePath(wave.sample, instrument)), wave.write);
    }
    replaceFile(path, [&](std::ostream& out) { writeInstrument(model, out); });
}

} // namespace zarno

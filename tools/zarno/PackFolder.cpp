// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Branding.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/InstrumentReport.h"
#include "tools/zarno/MakerError.h"
#include "tools/zarno/PackTexts.h"
#include "tools/zarno/Sha256.h"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <utility>

namespace zarno {
namespace {

namespace fs = std::filesystem;

constexpr const char* checksumsName = "SHA256SUMS";
constexpr const char* libraryEnding = ".instruments"; // beside a module of the same name

void copyInto(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::copy(from, to, fs::copy_options::recursive, error);
    if (error) throw MakerError(utf8Text(from), "cannot be copied: " + error.message());
}

void addInstrument(const std::string& source, const fs::path& library) {
    const fs::path path = filePath(absolutePath(source));
    if (!fs::exists(path)) throw MakerError(source, "is not there");
    if (fs::is_directory(path)) {
        for (const auto& entry : fs::directory_iterator(path))
            copyInto(entry.path(), library / entry.path().filename());
        return;
    }
    if (!reportOn(source).file.isEmbedded())
        throw MakerError(source, "plays wave files beside it: name its folder, or pack it with --embed");
    copyInto(path, library / path.filename());
}

void writeText(const fs::path& path, std::string_view text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
    if (!out.flush()) throw MakerError(utf8Text(path), "cannot be written");
}

std::string installTextFor(const std::string& name) {
    std::string text = installText;
    constexpr std::string_view placeholder = "@NAME@";
    for (auto at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder, at + name.size()))
        text.replace(at, placeholder.size(), name);
    return text;
}

/// Removes what has been made so far unless the pack was finished.
class UnfinishedPack {
  public:
    explicit UnfinishedPack(fs::path folder)
        : folder_(std::move(folder))
        , wasThere_(fs::exists(folder_)) {}
    ~UnfinishedPack() {
        std::error_code ignored;
        if (!finished) fs::remove_all(folder_, ignored);
        if (!finished && wasThere_) fs::create_directories(folder_, ignored);
    }
    bool finished = false;

  private:
    const fs::path folder_;
    const bool wasThere_;
};

void writeChecksums(const fs::path& folder) {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) {
            std::string name = utf8Text(entry.path().lexically_relative(folder));
            std::replace(name.begin(), name.end(), '\\', '/');
            files.push_back(name);
        }
    std::sort(files.begin(), files.end());
    std::ofstream out(folder / checksumsName, std::ios::binary);
    for (const std::string& name : files)
        out << sha256OfFile(utf8Text(folder / filePath(name))) << "  " << name << '\n';
    if (!out.flush()) throw MakerError(utf8Text(folder / checksumsName), "cannot be written");
}

} // namespace

void makePackFolder(const PackFolder& pack) {
    const fs::path folder = filePath(pack.folder);
    if (fs::exists(folder) && !fs::is_empty(folder)) throw MakerError(pack.folder, "is there already");
    if (pack.instruments.empty()) throw MakerError(pack.folder, "a pack needs instruments: --instruments");
    for (const std::string& module : pack.modules)
        refuseBundle(module);
    UnfinishedPack unfinished(folder);
    const fs::path library = folder / filePath(pack.name + libraryEnding);
    std::error_code error;
    fs::create_directories(library, error);
    if (error) throw MakerError(pack.folder, "cannot be made: " + error.message());
    for (const std::string& module : pack.modules) {
        const fs::path to = folder / filePath(pack.name + utf8Text(filePath(module).extension()));
        if (fs::exists(to)) throw MakerError(module, "another module has the same ending");
        copyInto(filePath(module), to);
        brandModule(utf8Text(to), pack.brand);
    }
    for (const std::string& instrument : pack.instruments)
        addInstrument(instrument, library);
    writeText(folder / "LICENSE", licenceText);
    writeText(folder / "NOTICE", noticeText);
    writeText(folder / "INSTALL.txt", installTextFor(pack.name));
    writeChecksums(folder);
    unfinished.finished = true;
}

} // namespace zarno

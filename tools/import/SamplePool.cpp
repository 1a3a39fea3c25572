// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SamplePool.h"

#include "tools/zarno/FilePaths.h"

#include <algorithm>
#include <filesystem>

namespace zarno {
namespace {

namespace fs = std::filesystem;

bool equalWithoutCase(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

fs::path entryLike(const fs::path& folder, const fs::path& name) {
    std::error_code failed;
    const std::string wanted = utf8Text(name);
    for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed))
        if (equalWithoutCase(utf8Text(entry->path().filename()), wanted)) return entry->path();
    return {};
}

// A step of the path after the other, so that folders may differ, too.
fs::path findWithoutCase(const fs::path& path) {
    std::error_code failed;
    if (fs::exists(path, failed)) return path;
    if (!path.has_relative_path() || !path.has_filename()) return {};
    const fs::path folder = findWithoutCase(path.has_parent_path() ? path.parent_path() : fs::path("."));
    return folder.empty() ? fs::path() : entryLike(folder, path.filename());
}

} // namespace

std::string findFile(const std::string& path) {
    constexpr std::size_t longestPath = 4096;
    if (path.size() > longestPath || path.find('\0') != std::string::npos) return {};
    std::error_code failed;
    const fs::path found = findWithoutCase(filePath(path));
    return fs::is_regular_file(found, failed) ? utf8Text(found) : std::string();
}

SamplePool::Known SamplePool::open(const std::string& path) {
    Known known;
    const std::string file = findFile(path);
    if (file.empty()) {
        known.fault = "missing sample file";
        return known;
    }
    std::string why;
    const auto info = readSoundFileInfo(file, why);
    if (!info || info->format.frames == 0) {
        known.fault = info ? "sample file without frames" : "sample file that cannot be read";
        return known;
    }
    known.info = *info;
    known.sample = samples_.size();
    samples_.push_back(soundFileSample(file, utf8Text(filePath(file).stem()), info->format));
    return known;
}

std::optional<SamplePool::Entry> SamplePool::find(const std::string& path, const std::string& place) {
    auto found = known_.find(path);
    if (found == known_.end()) found = known_.emplace(path, open(path)).first;
    if (found->second.sample) return Entry{*found->second.sample, &found->second.info};
    report_.add(found->second.fault, "zone left out", place + ": " + utf8Text(filePath(path).filename()));
    return std::nullopt;
}

} // namespace zarno

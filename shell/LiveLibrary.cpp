// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LiveLibrary.h"

#include "data/Limits.h"
#include "platform/Module.h"
#include "platform/RunWithTimeout.h"

#include <juce_core/juce_core.h>

#include <algorithm>

namespace zarno {
namespace {

std::shared_ptr<const Library> read(const std::vector<std::string>& folders) {
    const auto library = std::make_shared<Library>();
    const bool answers = runWithTimeout(
        limits::stalledDiskMs, [=](const SignOfLife& alive) { *library = Library::scan(folders, alive); });
    return answers ? library : std::make_shared<Library>(Library::unanswered());
}

// Another number when a file has come or gone in any of the folders.
std::uint64_t stampOf(const std::vector<std::string>& folders) {
    std::uint64_t stamp = 1;
    const auto add = [&stamp](const juce::File& folder) {
        stamp = stamp * 31 + static_cast<std::uint64_t>(folder.getLastModificationTime().toMilliseconds());
    };
    std::size_t count = 0;
    for (const std::string& path : folders) {
        const auto text = juce::String::fromUTF8(path.c_str());
        if (!juce::File::isAbsolutePath(text)) continue;
        add(juce::File(text));
        for (const auto& entry :
             juce::RangedDirectoryIterator(juce::File(text), true, "*", juce::File::findDirectories,
                                           juce::File::FollowSymlinks::no)) {
            if (++count > limits::libraryEntries) return stamp;
            add(entry.getFile());
        }
    }
    return stamp;
}

bool isSame(const Library& a, const Library& b) {
    return std::equal(a.entries.begin(), a.entries.end(), b.entries.begin(), b.entries.end(),
                      [](const auto& one, const auto& other) {
                          return one.path == other.path && one.title == other.title;
                      });
}

} // namespace

struct LiveLibrary::Reading {
    std::atomic<bool> isDone{false};
    std::uint64_t stamp = 0;                // written before isDone
    std::shared_ptr<const Library> library; // null: nothing has changed
};

LiveLibrary::LiveLibrary(std::vector<std::string> folders)
    : folders_(std::move(folders))
    , library_(read(folders_)) {}

LiveLibrary::~LiveLibrary() {
    if (reading_ == nullptr || reading_->isDone) return;
    keepModuleForever();
    thread_.detach();
}

std::shared_ptr<const Library> LiveLibrary::get() const {
    const std::lock_guard hold(lock_);
    return library_;
}

void LiveLibrary::refresh(bool onlyWhenChanged) {
    if (reading_ != nullptr) return;
    reading_ = std::make_shared<Reading>();
    const auto body = [reading = reading_, folders = folders_, former = onlyWhenChanged ? stamp_ : 0] {
        reading->stamp = stampOf(folders);
        if (reading->stamp != former) reading->library = read(folders);
        reading->isDone = true;
    };
    if (!thread_.start("ZSP Library", body, WorkerThread::Priority::lowest)) reading_ = nullptr;
}

void LiveLibrary::takeUp() {
    if (reading_ == nullptr || !reading_->isDone) return;
    thread_.join();
    const auto reading = std::exchange(reading_, nullptr);
    stamp_ = reading->stamp;
    if (reading->library == nullptr || isSame(*reading->library, *get())) return;
    {
        const std::lock_guard hold(lock_);
        library_ = reading->library;
    }
    ++generation_;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Module.h"

#include "platform/File.h"

#include <algorithm>
#include <utility>

namespace zarno {

std::vector<std::uint8_t> readModuleStart(std::size_t count) {
    const File file = File(modulePath());
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min<std::uint64_t>(count, file.size())));
    bytes.resize(file.readAt(0, bytes.data(), bytes.size()));
    return bytes;
}

ModulePin::ModulePin(ModulePin&& other) noexcept
    : module_(std::exchange(other.module_, nullptr)) {}

ModulePin& ModulePin::operator=(ModulePin&& other) noexcept {
    std::swap(module_, other.module_);
    return *this;
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Module.h"

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <memory>

namespace zarno {
namespace {

const char anchor = 0; // an address inside this module

struct FreeMemory {
    void operator()(char* text) const { std::free(text); }
};

std::string realPath(const char* path) {
    const std::unique_ptr<char, FreeMemory> resolved(::realpath(path, nullptr));
    return resolved ? std::string(resolved.get()) : std::string();
}

// The name the loader knows this module by; empty for the main program, which dlopen calls by no name.
std::string loaderName() {
    Dl_info info{};
    link_map* map = nullptr;
    if (::dladdr1(&anchor, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0 || map == nullptr)
        return {};
    return map->l_name == nullptr ? std::string() : std::string(map->l_name);
}

void* openAgain(int extraFlags) {
    const auto name = loaderName();
    return ::dlopen(name.empty() ? nullptr : name.c_str(), RTLD_NOW | RTLD_NOLOAD | extraFlags);
}

} // namespace

std::string modulePath() {
    const auto name = loaderName();
    return realPath(name.empty() ? "/proc/self/exe" : name.c_str());
}

std::vector<std::string> modulePaths() {
    const auto file = modulePath();
    if (file.empty()) return {};
    const auto name = loaderName();
    std::error_code error;
    const auto loaded = std::filesystem::absolute(name, error).lexically_normal().string();
    if (name.empty() || error || loaded == file || realPath(loaded.c_str()) != file) return {file};
    return {loaded, file};
}

ModulePin::ModulePin()
    : module_(openAgain(0)) {}

ModulePin::~ModulePin() {
    if (module_ != nullptr) ::dlclose(module_);
}

void keepModuleForever() {
    if (void* module = openAgain(RTLD_NODELETE)) ::dlclose(module);
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/SharedModule.h"

#include <dlfcn.h>

namespace zarno {

std::unique_ptr<SharedModule> SharedModule::load(const std::string& path, std::string& error) {
    // A bare name would be looked for where the system keeps its libraries.
    const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
    if (void* handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
        return std::unique_ptr<SharedModule>(new SharedModule(handle));
    error = ::dlerror();
    return nullptr;
}

SharedModule::~SharedModule() {
    ::dlclose(handle_);
}

void* SharedModule::symbol(const char* name) const {
    return ::dlsym(handle_, name);
}

} // namespace zarno

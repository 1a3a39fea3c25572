// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

namespace zarno {

/// A shared library brought into this process. Unloads when it goes.
class SharedModule {
  public:
    /// `path` in UTF-8. Null when it cannot be loaded; `error` then says why.
    static std::unique_ptr<SharedModule> load(const std::string& path, std::string& error);
    ~SharedModule();
    SharedModule(const SharedModule&) = delete;
    SharedModule& operator=(const SharedModule&) = delete;

    /// Null when the module does not export it.
    void* symbol(const char* name) const;

  private:
    explicit SharedModule(void* handle)
        : handle_(handle) {}

    void* handle_;
};

} // namespace zarno

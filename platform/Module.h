// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The module file (shared library or program) that contains this very code.
namespace zarno {

/// Its full path in UTF-8, native form; empty when the system does not tell.
std::string modulePath();

/// The paths that lead to the module file, in UTF-8: the one the system loaded it by, then the file itself when
/// that one goes through symbolic links.
std::vector<std::string> modulePaths();

/// The first bytes of the module file, at most `count`; fewer when the file is shorter, none when it cannot
/// be read.
std::vector<std::uint8_t> readModuleStart(std::size_t count);

/// Keeps the module in memory while it lives, whatever the host unloads. It must not be given back by a
/// thread that has only this module's code left to run: the code would vanish under it. Such a thread calls
/// keepModuleForever.
class ModulePin {
  public:
    ModulePin();
    ~ModulePin();
    ModulePin(ModulePin&& other) noexcept;
    ModulePin& operator=(ModulePin&& other) noexcept;

    bool isHeld() const { return module_ != nullptr; }

  private:
    void* module_ = nullptr;
};

/// The module stays in memory until the process ends.
void keepModuleForever();

} // namespace zarno

# SPDX-License-Identifier: GPL-3.0-or-later
# Windows x64 from Debian's g++-mingw-w64-x86-64-posix. Nothing of the build machine's own headers and libraries is
# looked at: only the compiler's, and the static libraries that scripts/mingw-libs keeps in the cache folder.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(DEFINED ENV{XDG_CACHE_HOME})
    set(zarnoMingwLibs $ENV{XDG_CACHE_HOME}/zarno/mingw/current)
else()
    set(zarnoMingwLibs $ENV{HOME}/.cache/zarno/mingw/current)
endif()
if(NOT EXISTS ${zarnoMingwLibs}/complete)
    message(FATAL_ERROR "The Windows libraries are not built: run scripts/setup")
endif()
set(CMAKE_FIND_ROOT_PATH ${zarnoMingwLibs} /usr/x86_64-w64-mingw32)
# PREFIX_PATH "/" makes find_library look at the top of each root, where the static libraries lie.
list(APPEND CMAKE_PREFIX_PATH /)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Everything of the compiler's own goes into the module: a host's machine has none of it.
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static")
endforeach()

find_program(zarnoWine NAMES wine64 wine PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
if(zarnoWine)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine)
endif()

# SPDX-License-Identifier: GPL-3.0-or-later
# Libraries other than JUCE, by the same target names in native and cross builds.

# A header-only library of Debian's: its own folder, linked into the build tree, is all that is put on the include
# path. The system's include folder never is: a cross compiler would read the build machine's C library from it.
function(zarno_header_library target folder)
    if(NOT EXISTS /usr/include/${folder})
        message(FATAL_ERROR "/usr/include/${folder} is missing: run scripts/setup")
    endif()
    string(REPLACE "::" "_" name ${target})
    set(forward ${CMAKE_BINARY_DIR}/forward/${name})
    file(MAKE_DIRECTORY ${forward})
    file(CREATE_LINK /usr/include/${folder} ${forward}/${folder} SYMBOLIC)
    add_library(forward_${name} INTERFACE)
    target_include_directories(forward_${name} SYSTEM INTERFACE ${forward})
    add_library(${target} ALIAS forward_${name})
endfunction()
zarno_header_library(CLI11::CLI11 CLI)
zarno_header_library(nlohmann_json::nlohmann_json nlohmann)

# Importing: makers work where these are.
if(ZARNO_TOOLS AND NOT CMAKE_CROSSCOMPILING)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(SndFile REQUIRED IMPORTED_TARGET sndfile)
    pkg_check_modules(PugiXml REQUIRED IMPORTED_TARGET pugixml)
endif()

if(ZARNO_TESTS)
    if(CMAKE_CROSSCOMPILING)
        set(INSTALL_GTEST OFF)
        add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
        foreach(name gtest gmock gtest_main gmock_main)
            if(NOT TARGET GTest::${name})
                add_library(GTest::${name} ALIAS ${name})
            endif()
        endforeach()
    else()
        find_package(GTest REQUIRED)
    endif()
endif()
if(ZARNO_BENCH)
    find_package(benchmark REQUIRED)
endif()

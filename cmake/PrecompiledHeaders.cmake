# SPDX-License-Identifier: GPL-3.0-or-later
# Precompiled headers: of the system, of JUCE and of GoogleTest only, since those never change. Our own headers stay
# outside, so that a change compiles what includes it and nothing else. Every source still includes what it uses; the
# trees of clang, which have no precompiled headers, show when one does not.
#
#   zarno_precompile(TARGET <header>...)     makes one for TARGET
#   zarno_share_precompiled(TARGET FROM)     uses FROM's: both are libraries or both programs (-fPIC or -fPIE), at
#                                            one optimisation level (else GCC 12 crashes), and the macros of both mean
#                                            the same to the headers of FROM's list
#   zarno_program_headers(NAME LIBRARIES <header>...)  makes one for light programs to share
#   zarno_light_objects(TARGET [source...])  -O1, but for these sources: the speed of the others does not matter
option(ZARNO_PCH "Precompile the headers of libraries" ON)
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(ZARNO_PCH OFF)
endif()

set(zarnoStandardHeaders <algorithm> <array> <atomic> <chrono> <cmath> <condition_variable> <cstdint> <cstring>
    <filesystem> <fstream> <functional> <map> <memory> <mutex> <optional> <set> <span> <string> <string_view> <thread>
    <vector>)

function(zarno_precompile target)
    if(ZARNO_PCH)
        target_precompile_headers(${target} PRIVATE ${zarnoStandardHeaders} ${ARGN})
        # ccache preprocesses faster when it may leave the precompiled part alone.
        target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>)
    endif()
endfunction()

function(zarno_share_precompiled target from)
    if(ZARNO_PCH)
        target_precompile_headers(${target} REUSE_FROM ${from})
        target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>)
    endif()
endfunction()

# To share a header is to depend on its target, so that programs share that of an empty one.
function(zarno_program_headers name libraries)
    if(ZARNO_PCH)
        file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp CONTENT "int main() {}\n")
        add_executable(${name} EXCLUDE_FROM_ALL ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
        target_link_libraries(${name} PRIVATE zarno_options ${libraries})
        zarno_precompile(${name} ${ARGN})
        zarno_light_objects(${name})
    endif()
endfunction()

function(zarno_light_objects target)
    # At -O1 GCC 12 takes std::string(1022, c) + text for an overrun.
    target_compile_options(${target} PRIVATE -O1 -Wno-array-bounds -Wno-stringop-overflow)
    if(ARGN)
        set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O2 SKIP_PRECOMPILE_HEADERS ON)
    endif()
endfunction()

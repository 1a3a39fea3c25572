# SPDX-License-Identifier: GPL-3.0-or-later
# Line tables are enough for stack traces and profiles, and keep objects and links small.
set(ZARNO_OPTIMISATION -O2 CACHE STRING "The compiler's level; -O1 is enough for trees that only test")
set(CMAKE_C_FLAGS_RELWITHDEBINFO "${ZARNO_OPTIMISATION} -g1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "${ZARNO_OPTIMISATION} -g1 -DNDEBUG")

# See platform/ThreadRole.h. For all of our code alike, so that every file sees the same declarations.
set(checksThreads OFF)
if(CMAKE_BUILD_TYPE STREQUAL Debug)
    set(checksThreads ON)
endif()
option(ZARNO_THREAD_CHECKS "Check which thread calls what" ${checksThreads})
if(ZARNO_THREAD_CHECKS)
    add_compile_definitions(ZARNO_THREAD_CHECKS)
endif()

# One interface target with the options of our own code. Audio must be the same bits in every build: no
# contraction into fused multiply-adds, no fast-math, SSE2 as the baseline on every system.
add_library(zarno_options INTERFACE)
target_compile_options(zarno_options INTERFACE -Wall -Wextra -ffp-contract=off)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options(zarno_options INTERFACE -msse2 -mfpmath=sse)
endif()
if(ZARNO_THREAD_CHECKS OR ZARNO_FUZZ)
    target_compile_definitions(zarno_options INTERFACE _GLIBCXX_ASSERTIONS) # indices, std::clamp and the like
    if(CMAKE_CXX_FLAGS MATCHES "undefined") # of which GCC leaves this out
        target_compile_options(zarno_options INTERFACE -fsanitize=float-cast-overflow -fno-sanitize-recover=float-cast-overflow)
    endif()
endif()
if(ZARNO_COVERAGE)
    # Not the framework, which is then the ordinary build's. Without optimisation the duels would take an hour.
    target_compile_options(zarno_options INTERFACE --coverage -O1 -fprofile-update=atomic)
    add_link_options(--coverage) # of everything: what the framework links takes our code in, too
endif()
if(WIN32)
    # windows.h without its min and max macros and without what we never use; Windows 7 and later.
    target_compile_definitions(zarno_options INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601 UNICODE _UNICODE)
endif()

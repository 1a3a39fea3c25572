# SPDX-License-Identifier: GPL-3.0-or-later
# JUCE from Debian's juce-modules-source, compiled once per build tree into zarno_juce; whatever needs JUCE links
# that and never a juce:: module of its own. The package's CMake files serve cross builds too, but only when they
# are named: a toolchain looks no further than its own root.
if(NOT JUCE_DIR)
    file(GLOB juceFolders /usr/lib/*/cmake/JUCE-7.*)
    if(NOT juceFolders)
        message(FATAL_ERROR "JUCE 7 is not installed: run scripts/setup")
    endif()
    list(GET juceFolders -1 juceFolder)
    set(JUCE_DIR ${juceFolder} CACHE PATH "Folder of JUCEConfig.cmake")
endif()
find_package(JUCE CONFIG REQUIRED)

add_library(zarno_juce STATIC)
target_link_libraries(zarno_juce PRIVATE juce::juce_audio_utils)
target_compile_definitions(zarno_juce
    PUBLIC
        JUCE_WEB_BROWSER=0
        JUCE_USE_CURL=0
        JUCE_USE_FLAC=0
        JUCE_USE_OGGVORBIS=0
        JUCE_USE_MP3AUDIOFORMAT=0
        JUCE_MODAL_LOOPS_PERMITTED=0
        JUCE_DISPLAY_SPLASH_SCREEN=0
        JUCE_REPORT_APP_USAGE=0
        JUCE_VST3_CAN_REPLACE_VST2=0
    INTERFACE $<TARGET_PROPERTY:zarno_juce,COMPILE_DEFINITIONS>)
target_include_directories(zarno_juce SYSTEM INTERFACE $<TARGET_PROPERTY:zarno_juce,INCLUDE_DIRECTORIES>)
target_compile_options(zarno_juce PRIVATE -w)
set_target_properties(zarno_juce PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    C_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)

# The package is without bundled image and compression code.
find_package(PNG REQUIRED)
find_package(JPEG REQUIRED)
find_package(ZLIB REQUIRED)
target_link_libraries(zarno_juce PUBLIC PNG::PNG JPEG::JPEG ZLIB::ZLIB)
if(WIN32)
    target_sources(zarno_juce PRIVATE ${CMAKE_CURRENT_LIST_DIR}/juce/DisplayFactory_win32.cpp)
    target_link_directories(zarno_juce PUBLIC ${zarnoMingwLibs}/lib) # JUCE asks for zlib as plain -lz
endif()

# The program that needs no host plays through JACK too; on Linux its server is found at run time.
if(NOT WIN32)
    set_source_files_properties(${JUCE_MODULES_DIR}/juce_audio_devices/juce_audio_devices.cpp
        TARGET_DIRECTORY zarno_juce PROPERTIES COMPILE_DEFINITIONS "JUCE_JACK=1;JUCE_JACK_CLIENT_NAME=\"Zarno Sampler Player\"")
endif()

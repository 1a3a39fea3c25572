// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

// What a file, a project or a layout may ask of us at the most. Every reader takes its limits from here and
// from nowhere else; docs/limits.md says of each what happens beyond it. scripts/check-house compares the
// two.
//
// Sizes that a file states are no limits: they are compared with what is left of the file.
namespace zarno::limits {

// Instrument files
inline constexpr std::size_t nameBytes = 1024;       // a text before its zero byte, but the layout's
inline constexpr std::size_t layoutBytes = 10485760; // the layout text
inline constexpr std::int32_t licenceTexts = 65536;  // a byte each in the file, but a string in memory
inline constexpr int failedSearches = 3; // samples asked for in vain, before all others are left out

// Samples
inline constexpr std::size_t waveFrameBytes = 49152;  // from frame to frame of a wave file
inline constexpr std::size_t blockFrameBytes = 32768; // the same of a sample inside an instrument file
inline constexpr int memoryPercent = 75; // of the machine's memory: what an instrument's samples may take

// Streaming and voices
inline constexpr int voices = 1024;
inline constexpr std::int32_t chunkFrames = 4194304;     // of a preload and of a voice's buffer
inline constexpr std::uint64_t bufferBytes = 268435456;  // buffers of all voices together
inline constexpr std::uint64_t preloadBytes = 268435456; // preloads beyond four times their samples
inline constexpr std::uint64_t preloadFrames = 65536;    // granted to a preload however short its sample is
inline constexpr double hungReadMs = 1000.0;      // waited for one read; then its thread is left behind
inline constexpr double stalledDiskMs = 10000.0;  // a bounce, a load or a scan waits while nothing is read
inline constexpr double offlineWaitMs = 120000.0; // and at the most for one buffer

// Panels
inline constexpr int xmlNesting = 64;
inline constexpr int xmlElements = 10000;
inline constexpr int xmlAttributes = 40000;
inline constexpr int elementAttributes = 250;        // walked anew for each that is asked for
inline constexpr std::size_t controls = 2000;        // those after them are left out
inline constexpr int panelLength = 8192;             // pixels, each way
inline constexpr int coordinate = 32768;             // pixels
inline constexpr int imageSide = 8192;               // pixels
inline constexpr std::size_t imagePixels = 67108864; // of a picture, and of all pictures of a layout together

// Projects, libraries, modules
inline constexpr std::size_t chunkPathBytes = 1024; // of the path in a project, with its zero byte
inline constexpr int libraryDepth = 64;             // folders inside one another
inline constexpr std::size_t libraryEntries = 1000000; // files and folders of a scan, instruments or not
inline constexpr double libraryMs = 30000.0;           // of a scan
inline constexpr double searchMs = 2000.0; // looking for missing samples in one load, with nobody watching
inline constexpr double unaskedPlaceMs = 2000.0;    // of it in one place that nobody chose
inline constexpr double watchedPlaceMs = 10000.0;   // the same while the user watches
inline constexpr std::size_t sidecarBytes = 4096;   // of a module's identity file; more is not read
inline constexpr std::size_t songBytes = 16777216;  // of a MIDI file to render
inline constexpr double songSeconds = 86400.0;      // of the same

// Importing
inline constexpr std::size_t importedZones = 262144; // of an instrument; short texts can ask for billions
inline constexpr std::size_t importedFiles = 131072; // of a folder
inline constexpr std::size_t importedTextBytes = 67108864; // of an SFZ text, includes and all
inline constexpr std::size_t importedLineBytes = 65536;    // of a line of it
inline constexpr std::size_t importedDefinitions = 65536;
inline constexpr int includes = 4096;
inline constexpr int includeDepth = 16;

// What one small hostile input may take in all. Fuzzing holds us to it.
inline constexpr int inputSeconds = 2;
inline constexpr int inputMegabytes = 512;

} // namespace zarno::limits

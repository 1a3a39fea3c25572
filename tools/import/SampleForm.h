// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/Records.h"
#include "tools/import/ImportReport.h"
#include "tools/import/ImportedInstrument.h"

#include <map>
#include <tuple>
#include <vector>

namespace zarno {

/// A recording as it is written: as it is, or cut behind its loop and with the loop unrolled. Some frames
/// follow that no position reaches but interpolation reads: silence, or how the loop goes on.
struct SampleForm {
    std::size_t sample = 0;                  ///< index into ImportedInstrument::samples
    std::uint64_t frames = 0;                ///< of the recording that are used
    std::uint64_t loopStart = 0, passes = 0; ///< the loop from loopStart to `frames`; 0 passes: no loop

    std::uint64_t seam = 0; ///< frames by which the loop begins and ends later

    static constexpr std::uint64_t tailFrames = 16;

    std::uint64_t loopFrames() const { return frames - loopStart; }
    /// With the loop unrolled, without the tail.
    std::uint64_t unrolledFrames() const {
        return passes == 0 ? frames : loopStart + passes * loopFrames() + seam;
    }
    std::uint64_t writtenFrames() const { return unrolledFrames() + tailFrames; }
};

/// Chooses the forms that zones need.
class SampleForms {
  public:
    /// `chunkFrames`: of streaming instruments; 0 when samples play from memory.
    SampleForms(const std::vector<ImportedSample>& samples, std::uint64_t chunkFrames, ImportReport& report)
        : samples_(samples)
        , chunkFrames_(chunkFrames)
        , report_(report) {}

    /// Sees to it that there is a form for this zone. Forms grow until all zones were added.
    void add(const ImportedZone& zone);
    /// For samples in memory, once all zones were added: moves loops to where their seams are heard least.
    void moveSeams();
    /// Index into forms() of the form of a zone that was added.
    std::size_t find(const ImportedZone& zone) const { return indices_.at(keyOf(zone)); }
    /// Start, end and loop of the zone as positions in its form, once all zones were added.
    void setPoints(const ImportedZone& zone, std::size_t form, ZoneRecord& record) const;

    const std::vector<SampleForm>& forms() const { return forms_; }

    /// Shorter loops of samples in memory are unrolled to this.
    static constexpr std::uint64_t shortestLoop = 8000;

  private:
    struct Loop {
        std::uint64_t start = 0, end = 0;
        bool exists() const { return start < end; }
    };
    using Key = std::tuple<std::size_t, std::uint64_t, std::uint64_t>; // sample and loop

    Key keyOf(const ImportedZone& zone) const;
    Loop loopOf(const ImportedZone& zone) const;
    std::uint64_t overshoot(const ImportedZone& zone) const;
    std::uint64_t passesFor(const ImportedZone& zone, const Loop& loop) const;

    const std::vector<ImportedSample>& samples_;
    const std::uint64_t chunkFrames_;
    ImportReport& report_;
    std::vector<SampleForm> forms_;
    std::map<Key, std::size_t> indices_;
};

} // namespace zarno

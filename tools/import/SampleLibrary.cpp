// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SampleLibrary.h"

namespace zarno {

SampleLibrary::Wave SampleLibrary::wave(const ImportedSample& sample, const SampleForm& form,
                                        int bytesPerSample) {
    if (sample.identity.empty()) return {files_.make(sample.name), true};
    const Key key{sample.identity, sample.shape ? std::optional(*sample.shape) : std::nullopt,
                  Form{form.frames, form.loopStart, form.passes, form.seam, bytesPerSample}};
    if (const auto found = names_.find(key); found != names_.end()) return {found->second, false};
    return {names_.emplace(key, files_.make(sample.name)).first->second, true};
}

} // namespace zarno

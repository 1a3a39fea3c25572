// SPDX-License-Identifier: GPL-3.0-or-later
// In a file of its own because it reads the module file; the rest of the identity is pure.
#include "data/Limits.h"
#include "platform/File.h"
#include "platform/Module.h"
#include "shell/ModuleIdentity.h"

namespace zarno {

ModuleIdentity readOwnIdentity() {
    const auto start = readModuleStart(identityField::end);
    if (hasIdentityFields(start)) return readIdentityFields(start);
    for (const auto& path : modulePaths()) {
        File sidecar(path + sidecarSuffix);
        if (!sidecar.isOpen()) continue;
        std::string text(limits::sidecarBytes, '\0');
        text.resize(sidecar.read(text.data(), text.size()));
        return parseSidecar(text);
    }
    return builtInIdentity();
}

} // namespace zarno

// SPDX-License-Identifier: GPL-3.0-or-later
// Apart from the rest of the identity, which is pure: this asks the disk for the module's own file.
#include "data/Limits.h"
#include "platform/File.h"
#include "platform/Module.h"
#include "shell/ModuleIdentity.h"

namespace zarno {

ModuleIdentity readOwnIdentity() {
    const auto start = readModuleStart(identityField::end);
    if (hasIdentityFields(start)) return readIdentityFields(start);
    File sidecar(modulePath() + sidecarSuffix);
    if (!sidecar.isOpen()) return builtInIdentity();
    std::string text(limits::sidecarBytes, '\0');
    text.resize(sidecar.read(text.data(), text.size()));
    return parseSidecar(text);
}

} // namespace zarno

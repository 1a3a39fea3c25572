// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Branding.h"

#include "data/Limits.h"
#include "platform/File.h"
#include "tools/zarno/FilePaths.h"
#include "tools/zarno/MakerError.h"

#include <fstream>

namespace zarno {
namespace {

std::string readStart(const std::string& path, std::size_t most) {
    File file(path);
    std::string bytes(most, '\0');
    bytes.resize(file.isOpen() ? file.read(bytes.data(), most) : 0);
    return bytes;
}

std::string checkedText(const std::string& text, const char* what) {
    if (text.size() > identityField::textBytes)
        throw MakerError(what, "\"" + text + "\" has more than 16 bytes");
    return text;
}

void change(ModuleIdentity& identity, const Brand& brand) {
    if (brand.id) {
        const auto id = uniqueIdFromText(*brand.id);
        if (!id) throw MakerError("--id", "\"" + *brand.id + "\" is not four plain characters");
        identity.uniqueId = *id;
    }
    if (brand.title) identity.packTitle = checkedText(*brand.title, "--title");
    if (brand.vendor) identity.vendor = checkedText(*brand.vendor, "--vendor");
}

ModuleIdentity brandFields(const std::string& module, const Brand& brand, std::string start) {
    auto* bytes = reinterpret_cast<std::uint8_t*>(start.data());
    ModuleIdentity identity = readIdentityFields({bytes, start.size()});
    change(identity, brand);
    if (!writeIdentityFields({bytes, start.size()}, identity))
        throw MakerError(module, "the header has no room for an identity");
    std::fstream file(filePath(module), std::ios::in | std::ios::out | std::ios::binary);
    file.write(start.data(), static_cast<std::streamsize>(start.size()));
    if (!file.flush()) throw MakerError(module, "cannot be written");
    return identity;
}

ModuleIdentity brandSidecar(const std::string& module, const Brand& brand) {
    const std::string path = module + sidecarSuffix;
    ModuleIdentity identity = parseSidecar(readStart(path, limits::sidecarBytes));
    change(identity, brand);
    std::ofstream file(filePath(path), std::ios::binary | std::ios::trunc);
    file << formatSidecar(identity);
    if (!file.flush()) throw MakerError(path, "cannot be written");
    return identity;
}

} // namespace

void refuseBundle(const std::string& module) {
    for (const auto& part : filePath(absolutePath(module)))
        if (part.extension() == ".vst3" || part.extension() == ".lv2")
            throw MakerError(module, "VST3 and LV2 plug-ins cannot be branded: their hosts would take all packs for one. "
                                     "Brand the VST 2.4 module (.dll or .so) or the program.");
}

ModuleIdentity brandModule(const std::string& module, const Brand& brand) {
    refuseBundle(module);
    const std::string start = readStart(module, identityField::end);
    if (start.empty()) throw MakerError(module, "cannot be read");
    if (hasIdentityFields({reinterpret_cast<const std::uint8_t*>(start.data()), start.size()}))
        return brandFields(module, brand, start);
    return brandSidecar(module, brand);
}

} // namespace zarno

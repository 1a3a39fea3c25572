// SPDX-License-Identifier: GPL-3.0-or-later
// The first bytes of a module, and the text beside one: whose they are is told to every host.
#include "platform/Utf8.h"
#include "shell/ModuleIdentity.h"
#include "tests/fuzz/run/Target.h"

namespace zarno::fuzz {
namespace {

bool isPresentable(const ModuleIdentity& identity) {
    constexpr std::size_t longest = 3 * identityField::textBytes; // 8-bit text grows when it becomes UTF-8
    return isValidUtf8(identity.packTitle) && isValidUtf8(identity.vendor) &&
           identity.packTitle.size() <= longest && identity.vendor.size() <= longest;
}

void run(std::string_view input) {
    std::vector<std::uint8_t> bytes(input.begin(), input.end());
    const ModuleIdentity fields = readIdentityFields(bytes);
    const ModuleIdentity sidecar = parseSidecar(input);
    require(isPresentable(fields) && isPresentable(sidecar), "names are short texts");
    require(uniqueIdFromText(uniqueIdAsText(sidecar.uniqueId)) == sidecar.uniqueId,
            "an id is four characters");
    if (!writeIdentityFields(bytes, sidecar)) return;
    const ModuleIdentity again = readIdentityFields(bytes);
    require(again.uniqueId == sidecar.uniqueId && sidecar.vendor.starts_with(again.vendor),
            "what is written is read again");
}

std::vector<std::string> seeds() {
    std::string module = "MZ" + std::string(76, '\0') + "Abcd  A title\t  \0 A vendor of 16 b";
    module.resize(200);
    return {module, formatSidecar({*uniqueIdFromText("Pck1"), "Tines", "A house"}),
            "vendor = \xFC\r\nid=Five5\n=\ntitle=", "MZ" + std::string(112, '\xC3')};
}

const Registered registered({"identity_bytes", 100000, run, seeds, {"id=", "title=", "vendor=", "\n", "MZ"}});

} // namespace
} // namespace zarno::fuzz

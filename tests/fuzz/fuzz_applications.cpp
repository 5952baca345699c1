// Texts by which applications are told; the first byte picks the kind.
#include "Fuzz.h"
#include "core/AppOwnerIndex.h"
#include "core/DesktopEntry.h"
#include "core/Scan.h"
#include "core/linux/ControlGroup.h"
#include "core/linux/Programs.h"
#include "core/linux/Sandbox.h"

using namespace sysinfo;

namespace {

void checkPath(std::string_view path) {
    platform::snapOfPath(path);
    platform::appImageMount(path);
    platform::appImageName(path);
    platform::installFolder(path);
    executableName({}, path);
    if (const auto bundle = AppOwnerIndex::bundlePath(path)) // the bundle of a bundle is itself
        require(AppOwnerIndex::bundlePath(*bundle) == bundle);
}

void checkGroup(std::string_view path) {
    const auto owner = platform::ownerOfGroup(path);
    require((owner.kind == platform::GroupOwner::Kind::none) == owner.path.empty());
    platform::nameOfGroup(path);
    platform::unescapeUnit(path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    std::string_view text = textOf(data + 1, size - 1);
    switch (data[0] % 4) {
    case 0: {
        const std::string_view locale = scutil::takeLine(text);
        parseDesktopEntry(text, locale);
        break;
    }
    case 1: checkGroup(platform::parseControlGroup(text)); break;
    case 2:
        platform::parseFlatpakInfo(text);
        platform::parseEnvironment(text, "APPIMAGE");
        break;
    default: checkPath(text); break;
    }
    return 0;
}

// The first four bytes are an SMC type; what follows is a key's data, an attribute's content, and a name.
#include "Fuzz.h"
#include "core/SMCDecode.h"
#include "core/SMCProtocol.h"
#include "core/linux/SensorIo.h"
#include "core/linux/SensorKeys.h"

#include <algorithm>
#include <cmath>

using namespace sysinfo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    const std::string_view text = textOf(data, size);
    const uint32_t type = smcCode(text.substr(0, 4));
    const std::string_view rest = text.substr(4);

    double value = 0;
    const bool decoded = decodeSMCNumeric(type, static_cast<uint32_t>(rest.size()), data + 4, value);
    require(!decoded || std::isfinite(value));

    platform::SensorIo io;
    io.read = [rest](platform::KeptAttribute&, std::span<char> buffer) {
        return static_cast<long>(rest.copy(buffer.data(), buffer.size()));
    };
    platform::KeptAttribute attribute{"input", {}};
    platform::readInteger(io, attribute);

    const auto parsed = platform::parseHwmonAttribute(rest);
    const auto chip = platform::classOfChip(rest, text, type);
    platform::SensorKeys keys;
    const uint32_t key =
        keys.assign(parsed.kind, platform::classOfSensor(chip, rest), rest, std::max(parsed.number, 0));
    require(key != 0 && smcCharacter(key, 0) == platform::keyLetter(parsed.kind));
    return 0;
}

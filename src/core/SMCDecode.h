#pragma once

#include <cstdint>

namespace sysinfo {

/// The value of one SMC key.
struct SMCReading {
    uint32_t type = 0; ///< packed type code
    double value = 0;
    bool ok = false;
};

/// Decodes `size` bytes of the SMC type `type` into `out`; false (and `out` untouched) for a null pointer, an
/// unknown type, a size that is not the type's, and a float that is not finite.
bool decodeSMCNumeric(uint32_t type, uint32_t size, const uint8_t* bytes, double& out);

/// Whether a key names a temperature: it begins with 'T' and does not end with "SP" (a set point).
bool isTemperatureKey(uint32_t key);

/// Whether a reading of `key` measures what keys of `kind` do: for 'F' the actual speed of a fan ("F0Ac"),
/// for any other kind a value of a fractional type.
bool measurementKey(char kind, uint32_t key, const SMCReading& reading);

} // namespace sysinfo

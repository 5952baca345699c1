#pragma once

#include "monitor/Snapshot.h"

#include <string>

/// The machine described to people; empty for what is not known.
namespace quarn {

/// "20 (8 performance, 12 efficiency), 28 threads".
std::string coresText(const Hardware& hardware);
/// "3.20 GHz".
std::string clockText(uint64_t hertz);
/// "L1 32 KiB + 48 KiB, L2 1.25 MiB, L3 30 MiB": of one core, the last level of the whole processor.
std::string cachesText(const Hardware& hardware);

} // namespace quarn

#pragma once

#include <string>
#include <string_view>

/// Texts around a chart.
namespace quarn {

/// How long ago, as below a time axis: "now", "−23 s", "−5 min", "−4 min 12 s".
std::string agoText(double seconds);

/// A reading as a mark of a scale: "75.0 %" becomes "75 %", "2.50 MB/s" becomes "2.5 MB/s".
std::string scaleMark(std::string_view reading);

} // namespace quarn

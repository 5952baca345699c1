#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

/// Readings as people read them: three significant digits, a blank, the unit. Pure functions, any thread. A
/// value that is not finite or makes no sense (a negative size) reads as `unknown`.
namespace quarn::format {

/// What stands for a reading that is not known.
inline constexpr std::string_view unknown = "—";
/// The number that reads as `unknown`.
inline constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();
/// `text`, or `unknown` where it is empty.
std::string orUnknown(std::string_view text);

/// "0.31", "3.21", "32.1", "321": three significant digits of a value below 1000, at most two decimals.
std::string threeDigits(double value);

/// "23.4", from 100 on "134": percent without its sign, one decimal, for columns.
std::string percentFigure(double percent);
std::string percent(double percent); ///< "23.4 %"

std::string memory(uint64_t bytes);      ///< binary units: "3.21 GiB"
std::string diskSize(uint64_t bytes);    ///< decimal units, as drives are sold: "512 GB"
std::string rate(double bytesPerSecond); ///< decimal units: "1.20 MB/s"
std::string count(double count);         ///< "12.3 k"
std::string perSecond(double count);     ///< how often: "12.3 k/s"
std::string watts(double watts);         ///< "12.4 W"
std::string energy(double joules);       ///< "12.4 Wh"

/// The two largest units: "3 d 4 h", "4 h 5 min", "5 min 12 s", "12.3 s".
std::string duration(double seconds);
/// The same in at most 7 characters, for columns: "3d 4h", "4h 5m", "5m 12s", "12.3s".
std::string shortDuration(double seconds);

} // namespace quarn::format

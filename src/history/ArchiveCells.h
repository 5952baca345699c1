#pragma once

#include "history/ArchiveColumns.h"

#include <cmath>
#include <unordered_map>

/// How single values become numbers of a column, and back.
namespace quarn::archive {

inline void require(bool holds) {
    if (!holds) throw ArchiveColumns::Unreadable();
}

inline double cellOf(double value) { return value; }
inline double cellOf(float value) { return static_cast<double>(value); }
inline double cellOf(bool value) { return value ? 1 : 0; }
inline double cellOf(int64_t value) { return static_cast<double>(value); }
inline double cellOf(uint64_t value) { return static_cast<double>(value); }
inline double cellOf(WallTime value) {
    return std::chrono::duration<double>(value.time_since_epoch()).count();
}
template <class T>
double cellOf(const std::optional<T>& value) {
    return value ? cellOf(*value) : HistorySample::notKnown;
}

inline void takeCell(double cell, double& value) {
    require(!std::isinf(cell));
    value = cell;
}
inline void takeCell(double cell, float& value) {
    require(!(std::abs(cell) > static_cast<double>(std::numeric_limits<float>::max())));
    value = static_cast<float>(cell);
}
inline void takeCell(double cell, bool& value) { value = cell == 1; }
inline void takeCell(double cell, int64_t& value) {
    constexpr double beyond = 9'223'372'036'854'775'808.0;
    require(cell >= -beyond && cell < beyond); // and no NaN
    value = static_cast<int64_t>(cell);
}
inline void takeCell(double cell, uint64_t& value) {
    constexpr double beyond = 18'446'744'073'709'551'616.0;
    require(cell >= 0 && cell < beyond);
    value = static_cast<uint64_t>(cell);
}
inline void takeCell(double cell, WallTime& value) {
    constexpr double yearTwoThousandTwoHundred = 7'258'118'400;
    require(cell >= 0 && cell < yearTwoThousandTwoHundred);
    value = WallTime(std::chrono::round<std::chrono::microseconds>(std::chrono::duration<double>(cell)));
}
template <class T>
void takeCell(double cell, std::optional<T>& value) {
    value.reset();
    if (!std::isnan(cell)) takeCell(cell, value.emplace());
}

/// A number below `end` that counts or points.
inline size_t placeBelow(size_t end, double cell) {
    require(cell >= 0 && cell < static_cast<double>(end) && cell == std::floor(cell));
    return static_cast<size_t>(cell);
}

/// Numbers texts in the order in which they first come.
class TextTable {
public:
    explicit TextTable(std::vector<std::string>& texts) : texts_(texts) {}
    double placeOf(std::string_view text) {
        const auto [found, isNew] = places_.try_emplace(std::string(text), texts_.size());
        if (isNew) texts_.emplace_back(text);
        return static_cast<double>(found->second);
    }

private:
    std::vector<std::string>& texts_;
    std::unordered_map<std::string, size_t> places_;
};

/// A column that must have `length` values; null when it is missing.
inline const ArchiveColumns::Column* find(const ArchiveColumns& from, std::string_view name, size_t length) {
    const auto found = from.columns.find(name);
    if (found == from.columns.end()) return nullptr;
    require(found->second.size() == length);
    return &found->second;
}

/// The same, where it must be there.
inline const ArchiveColumns::Column& column(const ArchiveColumns& from, std::string_view name,
                                            size_t length) {
    const auto* found = find(from, name, length);
    require(found != nullptr);
    return *found;
}

} // namespace quarn::archive

#pragma once

#include "history/MetricsColumns.h"
#include "history/SQLiteStatement.h"

namespace quarn {

/// Binds the value columns to the parameters from `first` on. What would spoil the table is mended: a number
/// that is none becomes 0, and no counter adds more than any machine can move at once, so that the sums of
/// years stay in range.
template <class Metrics>
void bindMetrics(SQLiteStatement& statement, int first, const Metrics& metrics);

/// The value columns of the current row, from column `first` on.
template <class Metrics>
Metrics readMetrics(const SQLiteStatement& statement, int first);

/// Merges the value columns of the current row, from column `first` on, into a total.
void mergeRow(AppMetrics& total, const SQLiteStatement& statement, int first);

extern template void bindMetrics(SQLiteStatement&, int, const SystemMetrics&);
extern template void bindMetrics(SQLiteStatement&, int, const AppMetrics&);
extern template SystemMetrics readMetrics(const SQLiteStatement&, int);
extern template AppMetrics readMetrics(const SQLiteStatement&, int);

} // namespace quarn

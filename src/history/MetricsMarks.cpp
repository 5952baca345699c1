#include "history/MetricsMarks.h"

namespace quarn {

namespace {

std::string_view textOf(MetricsKey key) { return metricsKeyTexts[static_cast<size_t>(key)]; }

} // namespace

MetricsMarks readMarks(SQLiteConnection& db) {
    return {readMark(db, MetricsKey::rolledHours), readMark(db, MetricsKey::rolledDays)};
}

std::optional<int64_t> readMark(SQLiteConnection& db, MetricsKey key) {
    return db.integer("SELECT value FROM meta WHERE key = ?", {textOf(key)});
}

void writeMark(SQLiteConnection& db, MetricsKey key, int64_t time) {
    auto& statement = db.statement("INSERT OR REPLACE INTO meta (key, value) VALUES (?, ?)");
    statement.bind({textOf(key), time});
    statement.run();
}

} // namespace quarn

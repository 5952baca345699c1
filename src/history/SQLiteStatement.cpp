#include "history/SQLiteStatement.h"

#include "history/SQLiteConnection.h"

#include <sqlite3.h>

#include <fmt/format.h>

namespace quarn {

SQLiteStatement::SQLiteStatement(SQLiteConnection& connection, std::string_view sql)
    : connection_(connection) {
    if (sqlite3_prepare_v3(connection.db_, sql.data(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &raw_, nullptr) != SQLITE_OK)
        connection.fail(sql);
}

SQLiteStatement::~SQLiteStatement() { sqlite3_finalize(raw_); }

void SQLiteStatement::bind(std::span<const SQLiteBindable> values) {
    int index = 0;
    for (const auto& value : values) bind(++index, value);
}

void SQLiteStatement::bind(int index, const SQLiteBindable& value) {
    const auto status = std::visit(
        [&](const auto& bound) {
            using Value = std::decay_t<decltype(bound)>;
            if constexpr (std::is_same_v<Value, int64_t>)
                return sqlite3_bind_int64(raw_, index, bound);
            else if constexpr (std::is_same_v<Value, double>)
                return sqlite3_bind_double(raw_, index, bound);
            else // an empty view may have no address, which SQLite would take for NULL
                return sqlite3_bind_text64(raw_, index, bound.empty() ? "" : bound.data(), bound.size(),
                                           SQLITE_STATIC, SQLITE_UTF8);
        },
        value);
    if (status != SQLITE_OK) connection_.fail(fmt::format("bind parameter {}", index));
}

void SQLiteStatement::run() {
    while (step()) {
    }
}

bool SQLiteStatement::step() {
    const int status = sqlite3_step(raw_);
    if (status == SQLITE_ROW) return true;
    if (status == SQLITE_DONE) {
        sqlite3_reset(raw_);
        return false;
    }
    try {
        connection_.fail(sqlite3_sql(raw_));
    } catch (...) {
        sqlite3_reset(raw_);
        throw;
    }
}

void SQLiteStatement::reset() {
    sqlite3_reset(raw_);
    sqlite3_clear_bindings(raw_);
}

int64_t SQLiteStatement::integer(int column) const { return sqlite3_column_int64(raw_, column); }
double SQLiteStatement::real(int column) const { return sqlite3_column_double(raw_, column); }
bool SQLiteStatement::isNull(int column) const { return sqlite3_column_type(raw_, column) == SQLITE_NULL; }

std::string_view SQLiteStatement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(raw_, column));
    return bytes ? std::string_view(bytes, static_cast<size_t>(sqlite3_column_bytes(raw_, column)))
                 : std::string_view();
}

} // namespace quarn

#include "history/SQLiteConnection.h"

#include <memory>
#include <sqlite3.h>

#include <fmt/format.h>

namespace quarn {

namespace {

constexpr int busyTimeoutMs = 1000;
constexpr int primaryCode = 0xff; ///< of an extended one

std::string messageOf(sqlite3* db, int code) {
    const char* message = db ? sqlite3_errmsg(db) : nullptr;
    return message && *message ? std::string(message) : fmt::format("code {}", code);
}

} // namespace

bool SQLiteError::isBroken() const {
    return (code & primaryCode) == SQLITE_CORRUPT || (code & primaryCode) == SQLITE_NOTADB;
}

bool SQLiteError::isMisfit() const { return (code & primaryCode) == SQLITE_ERROR; }

SQLiteConnection::SQLiteConnection(const std::string& path, Access access) {
    const int flags =
        access == Access::reading ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    const int status = sqlite3_open_v2(path.c_str(), &db_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (status != SQLITE_OK) {
        const std::string message = fmt::format("open {}: {}", path, messageOf(db_, status));
        const int code = db_ ? sqlite3_extended_errcode(db_) : status;
        sqlite3_close(db_);
        throw SQLiteError(message, code);
    }
    sqlite3_busy_timeout(db_, busyTimeoutMs);
}

SQLiteConnection::~SQLiteConnection() {
    statements_.clear();
    sqlite3_close(db_);
}

void SQLiteConnection::fail(std::string_view what) const {
    const int code = sqlite3_extended_errcode(db_);
    throw SQLiteError(fmt::format("{}: {}", what, messageOf(db_, code)), code);
}

void SQLiteConnection::execute(const std::string& sql) {
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail(sql);
}

std::optional<int64_t> SQLiteConnection::integer(std::string_view sql,
                                                 std::initializer_list<SQLiteBindable> bindings) {
    auto& row = statement(sql);
    row.bind(bindings);
    if (!row.step()) return {};
    const auto value = row.isNull(0) ? std::nullopt : std::optional(row.integer(0));
    row.reset();
    return value;
}

SQLiteStatement& SQLiteConnection::statement(std::string_view sql) {
    auto found = statements_.find(sql);
    if (found == statements_.end())
        found = statements_.emplace(std::string(sql), SQLiteStatement(*this, sql)).first;
    found->second.reset();
    return found->second;
}

void SQLiteConnection::transaction(const std::function<void()>& work) { enclose("BEGIN IMMEDIATE", work); }
void SQLiteConnection::snapshot(const std::function<void()>& work) { enclose("BEGIN", work); }

void SQLiteConnection::enclose(const char* begin, const std::function<void()>& work) {
    execute(begin);
    try {
        work();
        execute("COMMIT");
    } catch (...) {
        // SQLite has rolled back by itself after some failures, and then refuses.
        sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

} // namespace quarn

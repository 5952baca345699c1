#pragma once

#include "history/SQLiteError.h"
#include "history/SQLiteStatement.h"

#include <functional>
#include <map>
#include <optional>
#include <string>

struct sqlite3;

namespace quarn {

/// One open database. Opened without SQLite's own mutex: a connection and its statements belong to one queue.
/// Any call may wait up to a second for another program that has the database locked, and for the disk.
/// Everything throws SQLiteError.
class SQLiteConnection {
public:
    /// `reading` opens what is there and never writes to it; `writing` creates the file when it is missing.
    enum class Access { writing, reading };

    explicit SQLiteConnection(const std::string& path, Access access = Access::writing);
    ~SQLiteConnection();
    SQLiteConnection(const SQLiteConnection&) = delete;
    SQLiteConnection& operator=(const SQLiteConnection&) = delete;

    /// Runs a script of statements; rows are dropped.
    void execute(const std::string& sql);
    /// The first column of the first row; nullopt when there is no row or it is NULL.
    std::optional<int64_t> integer(std::string_view sql, std::initializer_list<SQLiteBindable> bindings = {});
    /// The statement for this text, reset and without bindings, prepared at its first use and kept for the
    /// lifetime of the connection.
    SQLiteStatement& statement(std::string_view sql);

    /// Runs `work` between BEGIN IMMEDIATE and COMMIT; when anything fails, rolls back and rethrows.
    void transaction(const std::function<void()>& work);
    /// Runs `work` on one unchanging state of the database, whatever other programs write meanwhile.
    void snapshot(const std::function<void()>& work);

private:
    friend SQLiteStatement;
    /// Throws with what SQLite says of the last call, as "<what failed>: <message>".
    [[noreturn]] void fail(std::string_view what) const;
    void enclose(const char* begin, const std::function<void()>& work);

    sqlite3* db_ = nullptr;
    std::map<std::string, SQLiteStatement, std::less<>> statements_;
};

} // namespace quarn

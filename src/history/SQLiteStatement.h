#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <variant>

struct sqlite3_stmt;

namespace quarn {

class SQLiteConnection;

/// What can be bound to a parameter. A text must live until the statement has run.
using SQLiteBindable = std::variant<int64_t, double, std::string_view>;

/// One prepared statement, owned by the cache of its connection. Not thread-safe, like the connection.
///
///     auto& rows = db.statement("SELECT start, seconds FROM system_1m WHERE start >= ?");
///     rows.bind({from});
///     while (rows.step()) use(rows.integer(0), rows.real(1));
///
/// A statement that has ended, by its last row or an error, is reset and holds no lock. Whoever stops
/// earlier calls `reset`.
class SQLiteStatement {
public:
    /// Prepares `sql`; throws SQLiteError.
    SQLiteStatement(SQLiteConnection& connection, std::string_view sql);
    ~SQLiteStatement();
    SQLiteStatement(SQLiteStatement&& other) noexcept
        : raw_(std::exchange(other.raw_, nullptr)), connection_(other.connection_) {}
    SQLiteStatement(const SQLiteStatement&) = delete;
    SQLiteStatement& operator=(const SQLiteStatement&) = delete;

    /// Binds the parameters ?1, ?2, …; throws SQLiteError.
    void bind(std::span<const SQLiteBindable> values);
    void bind(std::initializer_list<SQLiteBindable> values) {
        bind(std::span(values.begin(), values.size()));
    }
    void bind(int index, const SQLiteBindable& value); ///< `index` counts from 1

    /// Steps to completion; throws SQLiteError.
    void run();
    /// The next row; false after the last one. Throws SQLiteError.
    bool step();
    /// Ends the statement and forgets what is bound.
    void reset();

    /// The columns of the current row, counted from 0. A text is valid until the next step.
    int64_t integer(int column) const;
    double real(int column) const;
    std::string_view text(int column) const;
    bool isNull(int column) const;

private:
    sqlite3_stmt* raw_ = nullptr;
    SQLiteConnection& connection_; ///< not owned
};

} // namespace quarn

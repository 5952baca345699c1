#include "history/SQLiteConnection.h"

#include "history/Support.h"

namespace quarn::testing {
namespace {

TEST(SQLiteConnection, SaysWhatFailed) {
    const TempRoot folder;
    const auto path = [&](const char* name) { return (folder.path() / name).string(); };
    SQLiteConnection db(path("db"));
    db.execute("CREATE TABLE t (a INTEGER PRIMARY KEY)");

    EXPECT_EQ(failureOf([&] { SQLiteConnection(path("none/db")); }),
              "open " + path("none/db") + ": unable to open database file");
    EXPECT_EQ(failureOf([&] { db.execute("DROP TABLE x"); }), "DROP TABLE x: no such table: x");
    EXPECT_EQ(failureOf([&] { db.statement("SELECT b FROM t"); }), "SELECT b FROM t: no such column: b");
    auto& insert = db.statement("INSERT INTO t VALUES (?)");
    EXPECT_EQ(failureOf([&] {
                  insert.bind({int64_t{1}, 2.0});
              }),
              "bind parameter 2: column index out of range");
    insert.run();
    EXPECT_EQ(failureOf([&] { insert.run(); }), "INSERT INTO t VALUES (?): UNIQUE constraint failed: t.a");
    EXPECT_EQ(failureOf([&] { SQLiteConnection(path("new"), SQLiteConnection::Access::reading); }),
              "open " + path("new") + ": unable to open database file");
}

TEST(SQLiteConnection, KeepsStatementsWithoutWhatWasBound) {
    const TempRoot folder;
    SQLiteConnection db((folder.path() / "db").string());
    constexpr auto sql = "SELECT ?1, ?2, ?3, ?4";
    auto& first = db.statement(sql);
    first.bind({int64_t{1} << 40, 0.5, std::string_view("a\0b", 3), std::string_view()});
    ASSERT_TRUE(first.step());
    EXPECT_EQ(first.integer(0), int64_t{1} << 40);
    EXPECT_EQ(first.real(1), 0.5);
    EXPECT_EQ(first.text(2), std::string_view("a\0b", 3));
    EXPECT_FALSE(first.isNull(3)); // an empty text is a text

    auto& second = db.statement(sql);
    EXPECT_EQ(&first, &second);
    ASSERT_TRUE(second.step());
    EXPECT_TRUE(second.isNull(0));
    second.reset();
}

TEST(SQLiteConnection, AFailedTransactionLeavesNothing) {
    const TempRoot folder;
    SQLiteConnection db((folder.path() / "db").string());
    db.execute("CREATE TABLE t (a)");
    EXPECT_THROW(db.transaction([&] {
        db.execute("INSERT INTO t VALUES (1)");
        throw std::runtime_error("stop");
    }),
                 std::runtime_error);
    db.transaction([&] { db.execute("INSERT INTO t VALUES (2)"); });
    EXPECT_EQ(db.integer("SELECT SUM(a) FROM t"), 2);
}

} // namespace
} // namespace quarn::testing

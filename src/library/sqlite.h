#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>

namespace brindlecast {

struct SqliteCloser {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
using SqliteConnection = std::unique_ptr<sqlite3, SqliteCloser>;

// Opens a database file, making it where there is none, with foreign keys on; null when it can't be opened.
[[nodiscard]] SqliteConnection OpenDatabase(const std::wstring& path);

// One statement from prepare to finalize. Without a connection, or when it can't be prepared, it is false
// and must not be used. Parameters count from 1, columns from 0. Texts are wide outside and UTF-8 in the
// file; NULL reads as an empty text.
class SqliteStatement {
public:
    SqliteStatement(sqlite3* connection, const char* sql);
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;
    ~SqliteStatement() { sqlite3_finalize(statement); }
    explicit operator bool() const { return statement != nullptr; }

    void BindText(int parameter, const std::wstring& text);
    void BindInt(int parameter, std::int32_t number) { sqlite3_bind_int(statement, parameter, number); }
    void BindInt64(int parameter, std::int64_t number) { sqlite3_bind_int64(statement, parameter, number); }
    void BindDouble(int parameter, double number) { sqlite3_bind_double(statement, parameter, number); }

    // Goes to the next row; false when there is none, or on an error.
    [[nodiscard]] bool StepToRow() { return sqlite3_step(statement) == SQLITE_ROW; }
    // Runs a statement that gives no rows.
    [[nodiscard]] bool StepToEnd() { return sqlite3_step(statement) == SQLITE_DONE; }

    [[nodiscard]] bool IsNull(int column) const { return sqlite3_column_text(statement, column) == nullptr; }
    [[nodiscard]] std::wstring TextAt(int column) const;
    [[nodiscard]] std::int32_t IntAt(int column) const { return sqlite3_column_int(statement, column); }
    [[nodiscard]] std::int64_t Int64At(int column) const { return sqlite3_column_int64(statement, column); }
    [[nodiscard]] double DoubleAt(int column) const { return sqlite3_column_double(statement, column); }

private:
    sqlite3_stmt* statement = nullptr;
};

// The id of the last inserted row, as ids travel through the program: its low 32 bits.
[[nodiscard]] std::int32_t LastRowId(sqlite3* connection);

} // namespace brindlecast

#include "library/sqlite.h"

#include "base/utf8.h"

namespace brindlecast {

SqliteConnection OpenDatabase(const std::wstring& path) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(WideToUtf8(path).c_str(), &opened);
    // A failed opening may leave a connection behind, which is closed all the same.
    SqliteConnection connection(opened);
    if (result != SQLITE_OK) {
        return nullptr;
    }
    sqlite3_exec(connection.get(), "PRAGMA foreign_keys = ON;", nullptr, nullptr, nullptr);
    return connection;
}

SqliteStatement::SqliteStatement(sqlite3* connection, const char* sql) {
    if (connection != nullptr) {
        sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr);
    }
}

void SqliteStatement::BindText(int parameter, const std::wstring& text) {
    sqlite3_bind_text(statement, parameter, WideToUtf8(text).c_str(), -1, SQLITE_TRANSIENT);
}

std::wstring SqliteStatement::TextAt(int column) const {
    return Utf8ToWide(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
}

std::int32_t LastRowId(sqlite3* connection) {
    return static_cast<std::int32_t>(sqlite3_last_insert_rowid(connection));
}

} // namespace brindlecast

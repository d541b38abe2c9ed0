#include "tests/support/library_fixture.h"

#include "base/utf8.h"
#include "library/sqlite.h"

#include <stdexcept>

namespace brindlecast::testing {

namespace {

SqliteConnection OpenFile(const std::filesystem::path& file) {
    sqlite3* opened = nullptr;
    const auto name = file.u8string();
    if (sqlite3_open(reinterpret_cast<const char*>(name.c_str()), &opened) != SQLITE_OK) {
        throw std::runtime_error("the test's own connection");
    }
    return SqliteConnection(opened);
}

} // namespace

LibraryTest::LibraryTest() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    // A name outside ASCII, since users have such.
    folder = std::filesystem::temp_directory_path() / std::filesystem::path(u8"브린들 자료") /
             (std::string(test->test_suite_name()) + "." + test->name());
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
}

LibraryTest::~LibraryTest() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::wstring LibraryTest::WideName(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    return Utf8ToWide(reinterpret_cast<const char*>(name.c_str()));
}

DataFolderQuery LibraryTest::DataFolder() const {
    return [this]() -> std::optional<std::wstring> {
        return known ? std::optional(WideName(folder)) : std::nullopt;
    };
}

std::vector<std::string> LibraryTest::Query(const std::string& sql) const {
    const SqliteConnection connection = OpenFile(File());
    std::vector<std::string> rows;
    const auto collect = [](void* out, int count, char** values, char**) {
        std::string row;
        for (int i = 0; i < count; ++i) {
            row += (i > 0 ? "|" : "") + std::string(values[i] != nullptr ? values[i] : "NULL");
        }
        static_cast<std::vector<std::string>*>(out)->push_back(row);
        return 0;
    };
    char* message = nullptr;
    if (sqlite3_exec(connection.get(), sql.c_str(), collect, &rows, &message) != SQLITE_OK) {
        rows.emplace_back(std::string("error: ") + message);
    }
    sqlite3_free(message);
    return rows;
}

void LibraryTest::Run(const std::string& sql) const {
    EXPECT_EQ(std::vector<std::string>{}, Query(sql)) << sql;
}

} // namespace brindlecast::testing

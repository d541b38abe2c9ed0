#pragma once

#include "library/playlist_database.h"
#include "tests/support/library_fakes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace brindlecast::testing {

// An empty folder of application data for each test.
class LibraryTest : public ::testing::Test {
protected:
    LibraryTest();
    ~LibraryTest() override;

    [[nodiscard]] static std::wstring WideName(const std::filesystem::path& path);
    [[nodiscard]] DataFolderQuery DataFolder() const;
    // Lets the folder be unknown from now on.
    void LoseDataFolder() { known = false; }
    // The library file, as the host system names it.
    [[nodiscard]] std::filesystem::path File() const { return folder / "Brindlecast" / "playlist.db"; }
    // What a query gives, read by a connection of the test's own: columns joined by "|", NULL as "NULL".
    [[nodiscard]] std::vector<std::string> Query(const std::string& sql) const;
    // Runs statements by such a connection.
    void Run(const std::string& sql) const;

    std::filesystem::path folder;
    bool known = true;
    FakeClock clock;
};

} // namespace brindlecast::testing

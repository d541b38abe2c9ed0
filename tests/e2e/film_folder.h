#pragma once

#include <filesystem>
#include <string>

namespace brindlecast::testing {

// A folder of a test's own, with a Korean name and empty at first, that goes with the object. It lies where
// drops from the host's desktop can come from.
class FilmFolder {
public:
    FilmFolder();
    FilmFolder(const FilmFolder&) = delete;
    FilmFolder& operator=(const FilmFolder&) = delete;
    ~FilmFolder();

    // The path that a file of this name has or would have.
    [[nodiscard]] std::wstring Path(const std::wstring& name) const { return (folder / name).wstring(); }
    // A copy of the film of three seconds; its path, like that of the next two.
    std::wstring AddFilm(const std::wstring& name) const;
    // A file that no decoder takes, whatever its name.
    std::wstring AddGarbage(const std::wstring& name) const;
    std::wstring AddFolder(const std::wstring& name) const;
    // A shortcut to that path.
    std::wstring AddShortcut(const std::wstring& name, const std::wstring& target) const;

private:
    std::filesystem::path folder;
};

} // namespace brindlecast::testing

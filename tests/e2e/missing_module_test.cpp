#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/witness.h"

#include <algorithm>
#include <filesystem>

namespace brindlecast::testing {
namespace {

constexpr const wchar_t* kWitness = L"BrindlecastWitness.exe";

// A copy of the program's folder, with the witness beside it, without one of its files.
class FolderWithout {
public:
    explicit FolderWithout(const wchar_t* name) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        for (const auto& entry : std::filesystem::directory_iterator(ProgramFolder())) {
            if (entry.is_regular_file() && entry.path().filename() != name) {
                std::filesystem::copy_file(entry.path(), folder / entry.path().filename());
            }
        }
        std::filesystem::copy_file(Witness::Program(), folder / kWitness);
    }
    FolderWithout(const FolderWithout&) = delete;
    FolderWithout& operator=(const FolderWithout&) = delete;
    ~FolderWithout() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    [[nodiscard]] ProcessStart Start(const wchar_t* program) const {
        return {(folder / program).wstring(), L"", std::nullopt};
    }

private:
    const std::filesystem::path folder = std::filesystem::path(ReportFolder()) / L"incomplete";
};

class MissingModuleTest : public ProgramTest {};

TEST_F(MissingModuleTest, WithoutTheSoundDecoderAFilmWithSoundDoesNotOpenAndASilentOneDoes) {
    const FolderWithout folder(L"LAVAudio.ax");
    Player player(folder.Start(L"Brindlecast.exe"));
    ASSERT_TRUE(player.Play(kSilentFilm));
    player.Drop({Media(kFilm.name)});
    EXPECT_TRUE(WaitUntil(limits::kReaction, "closing of the film", [&] { return !player.IsOpen(); }));
    EXPECT_TRUE(player.Answers());
    EXPECT_FALSE(player.IsOpen());
    EXPECT_EQ(player.Title(), L"Brindlecast - silent.mkv");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MissingModuleTest, WithoutTheVideoRendererNothingOpens) {
    const FolderWithout folder(L"MpcVideoRenderer64.ax");
    const Witness witness;
    Player player(folder.Start(kWitness));
    const auto attempts = [&] {
        const auto lines = witness.Lines();
        return std::ranges::count_if(lines, [](const std::wstring& line) {
            return line.starts_with(L"[Brindlecast] Failed to load: ") &&
                   line.ends_with(L"\\MpcVideoRenderer64.ax (error=126)");
        });
    };
    for (const int expected : {2, 4}) {
        player.Drop({Media(expected == 2 ? kFilm.name : kSilentFilm.name)});
        EXPECT_TRUE(WaitUntil(limits::kReaction, "two attempts", [&] { return attempts() == expected; }));
        EXPECT_TRUE(player.Answers());
        EXPECT_FALSE(player.IsOpen());
        EXPECT_EQ(player.Title(), L"Brindlecast");
    }
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing

#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/witness.h"

#include <algorithm>
#include <vector>

namespace brindlecast::testing {
namespace {

class WitnessTest : public ProgramTest {
protected:
    static ProcessStart Start() { return {Witness::Program(), L"", std::nullopt}; }

    const Witness witness;
};

// How a line begins and ends; what stands between is not fixed.
struct ExpectedLine {
    const wchar_t* begin;
    const wchar_t* end = L"";
};

TEST_F(WitnessTest, AnOpeningTellsItsStepsInTheirOrder) {
    const ExpectedLine expected[] = {
        {L"[Brindlecast] OpenFile with HWAccel=5"},
        {L"[Brindlecast] Loaded filter from: ", L"\\MpcVideoRenderer64.ax"},
        {L"[Brindlecast] Loaded filter from: ", L"\\LAVSplitter.ax"},
        {L"[Brindlecast] Keyframes found: 5"},
        {L"[Brindlecast] Keyframes: ", L"0.02, 2.02, 4.02, 6.02, 8.02"},
        {L"[Brindlecast] Detected video resolution: 320x180"},
        {L"[Brindlecast] Loaded filter from: ", L"\\LAVVideo.ax"},
        {L"[Brindlecast] ConfigureLAVVideo: HWAccel=5"},
        {L"[Brindlecast] Loaded filter from: ", L"\\LAVAudio.ax"},
        {L"[Brindlecast] Loaded filter from: ", L"\\AudioSwitcher.ax"},
        {L"[Brindlecast] Rendering pin: Video"},
        {L"[Brindlecast] Successfully rendered pin: Video"},
        {L"[Brindlecast] Connection status - Video: 1, Audio: 1"},
        {L"[Brindlecast] Play() - Current state: 0"},
        {L"[Brindlecast] Play() - Run() returned: 0x0000000"},
        {L"[Brindlecast] Active Decoder: "},
    };
    Player player(Start());
    ASSERT_TRUE(player.Play(kKoreanFilm));
    EXPECT_EQ(player.Close(), 0U);
    const std::vector<std::wstring> lines = witness.Lines();
    std::size_t at = 0;
    for (const ExpectedLine& line : expected) {
        while (at < lines.size() && !(lines[at].starts_with(line.begin) && lines[at].ends_with(line.end))) {
            ++at;
        }
        ASSERT_LT(at, lines.size()) << "not there, or not in its place: "
                                    << ::testing::PrintToString(std::wstring(line.begin) + L"…" + line.end)
                                    << " in " << ::testing::PrintToString(lines);
        ++at;
    }
}

TEST_F(WitnessTest, AFileThatIsNoFilmIsTriedTwice) {
    Player player(Start());
    player.Drop({Media(L"text.mkv")});
    const auto failures = [&] {
        const auto lines = witness.Lines();
        return std::ranges::count_if(lines, [](const std::wstring& line) {
            return line.starts_with(L"[Brindlecast] Failed to load file: 0x8");
        });
    };
    EXPECT_TRUE(WaitUntil(limits::kReaction, "second attempt", [&] { return failures() == 2; }));
    EXPECT_TRUE(player.Answers());
    EXPECT_EQ(failures(), 2);
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing

#include "app/accelerators.h"
#include "app/commands.h"
#include "app/position_text.h"
#include "app/rate_rules.h"
#include "app/recent_menu.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>

namespace brindlecast {
namespace {

using Action = CommandAction;

// A row as the user's manual would have it; no text means that nothing is shown.
struct ExpectedCommand {
    int id;
    Action action;
    double amount = 0.0;
    std::wstring text{};
    std::wstring otherText{};
};

const ExpectedCommand kExpectedCommands[] = {
    {5001, Action::OpenDialog},
    {5002, Action::Nothing},
    {5003, Action::TogglePlay},
    {5004, Action::Stop},
    {5005, Action::StepKeyFrame, -1},
    {5006, Action::StepKeyFrame, 1},
    {5014, Action::Screenshot},
    {5015, Action::ToggleRate},
    {5016, Action::ChangeRate, -0.1},
    {5017, Action::ChangeRate, 0.1},
    {5020, Action::Nothing},
    {5021, Action::About},
    {5022, Action::Exit},
    {5023, Action::FileInformation},
    {5030, Action::SetRate, 0.25, L"0.25x"},
    {5031, Action::SetRate, 0.5, L"0.50x"},
    {5032, Action::SetRate, 0.75, L"0.75x"},
    {5033, Action::SetRate, 0.9, L"0.90x"},
    {5034, Action::SetRate, 1.0, L"1.00x"},
    {5035, Action::SetRate, 1.1, L"1.10x"},
    {5036, Action::SetRate, 1.25, L"1.25x"},
    {5037, Action::SetRate, 1.5, L"1.50x"},
    {5038, Action::SetRate, 1.75, L"1.75x"},
    {5039, Action::SetRate, 2.0, L"2.00x"},
    {5040, Action::SetRate, 3.0, L"3.00x"},
    {5041, Action::SetRate, 4.0, L"4.00x"},
    {5050, Action::SetFrameRate, 23.976, L"%.2fx"},
    {5051, Action::SetFrameRate, 24, L"%.2fx"},
    {5052, Action::SetFrameRate, 25, L"%.2fx"},
    {5053, Action::SetFrameRate, 29.97, L"%.2fx"},
    {5054, Action::SetFrameRate, 30, L"%.2fx"},
    {5055, Action::SetFrameRate, 59.94, L"%.2fx"},
    {5056, Action::SetFrameRate, 60, L"%.2fx"},
    {5060, Action::RunCommand, 6010},
    {5061, Action::RunMessage, 1233},
    {5062, Action::RunMessage, 1234},
    {5063, Action::RunMessage, 1235},
    {5064, Action::RunMessage, 1236},
    {5065, Action::RunCommand, 6013},
    {5066, Action::RunCommand, 6011},
    {5070, Action::ResizeToVideo, 25, L"25%"},
    {5071, Action::ResizeToVideo, 50, L"50%"},
    {5072, Action::ResizeToVideo, 75, L"75%"},
    {5073, Action::ResizeToVideo, 100, L"100%"},
    {5074, Action::ResizeToVideo, 150, L"150%"},
    {5075, Action::ResizeToVideo, 200, L"200%"},
    {5080, Action::ResizeToMonitor, 30, L"모니터 30%"},
    {5081, Action::ResizeToMonitor, 45, L"모니터 45%"},
    {5082, Action::ResizeToMonitor, 60, L"모니터 60%"},
    {5083, Action::ResizeToMonitor, 75, L"모니터 75%"},
    {5110, Action::ClearRecentFiles},
    {5180, Action::ToggleCompression, 0, L"DRC ON", L"DRC OFF"},
    {5350, Action::SubtitlesOff, 0, L"자막 끄기"},
    {5351, Action::OpenSubtitle, 0, L"자막 켜기"},
    {5400, Action::PressMarkA, 0, L"A 지점 설정", L"A 지점 해제"},
    {5401, Action::PressMarkB, 0, L"B 지점 설정", L"B 지점 해제"},
    {5402, Action::ClearMarks, 0, L"구간 반복 해제"},
    {5500, Action::AddFavorite},
    {5501, Action::ManageFavorites},
    {6001, Action::TogglePlay},
    {6002, Action::StepKeyFrame, -1, L"%02d:%02d"},
    {6003, Action::StepKeyFrame, 1, L"%02d:%02d"},
    {6004, Action::ChangeVolume, 1, L"볼륨 %d%%"},
    {6005, Action::ChangeVolume, -1, L"볼륨 %d%%"},
    {6010, Action::TurnUpright, 0, L"회전 %d°"},
    {6011, Action::SetRotation, 90, L"회전 %d°"},
    {6012, Action::SetRotation, 180, L"회전 %d°"},
    {6013, Action::SetRotation, 270, L"회전 %d°"},
    {6014, Action::Turn, 270, L"회전 %d°"},
    {6015, Action::Turn, 90, L"회전 %d°"},
    {6016, Action::FlipHorizontally, 0, L"좌우 반전", L"좌우 반전 해제"},
    {6017, Action::FlipVertically, 0, L"상하 반전", L"상하 반전 해제"},
    {6020, Action::ToggleMute, 0, L"음소거", L"음소거 해제"},
    {6021, Action::ToggleRate, 0, L"%.2fx"},
    {6022, Action::ChangeRate, -0.25, L"%.2fx"},
    {6023, Action::ChangeRate, 0.25, L"%.2fx"},
    {6030, Action::PressMarkA, 0, L"A 지점 설정", L"A 지점 해제"},
    {6031, Action::PressMarkB, 0, L"B 지점 설정", L"B 지점 해제"},
    {6032, Action::ClearMarks, 0, L"구간 반복 해제"},
    {6033, Action::ShiftSubtitles, -500, L"자막 딜레이 %+.1f초"},
    {6034, Action::ShiftSubtitles, 500, L"자막 딜레이 %+.1f초"},
    {6035, Action::ResetSubtitleShift, 0, L"자막 딜레이 초기화"},
    {6040, Action::OpenDialog},
    {6041, Action::ToggleFullScreen},
    {6042, Action::Escape},
    {6050, Action::ResizeToVideo, 25, L"25%"},
    {6051, Action::ResizeToVideo, 50, L"50%"},
    {6052, Action::ResizeToVideo, 75, L"75%"},
    {6053, Action::ResizeToVideo, 100, L"100%"},
    {6054, Action::ResizeToVideo, 150, L"150%"},
    {6055, Action::ResizeToVideo, 200, L"200%"},
    {6060, Action::AddFavorite},
    {6061, Action::Screenshot},
};

std::wstring TextOf(const wchar_t* text) {
    return text != nullptr ? text : L"";
}

TEST(CommandTable, EveryRowHasItsActionAmountAndMessage) {
    ASSERT_EQ(Commands().size(), std::size(kExpectedCommands));
    for (const ExpectedCommand& expected : kExpectedCommands) {
        SCOPED_TRACE(expected.id);
        const Command* command = FindCommand(expected.id);
        ASSERT_NE(command, nullptr);
        EXPECT_EQ(command->id, expected.id);
        EXPECT_EQ(command->action, expected.action);
        EXPECT_EQ(command->amount, expected.amount);
        EXPECT_EQ(TextOf(command->text), expected.text);
        EXPECT_EQ(TextOf(command->otherText), expected.otherText);
    }
}

TEST(CommandTable, AnIdBetweenTheRowsHasNone) {
    std::set<int> known;
    for (const ExpectedCommand& expected : kExpectedCommands) {
        known.insert(expected.id);
    }
    for (int id = 4990; id < 6100; ++id) {
        EXPECT_EQ(FindCommand(id) != nullptr, known.contains(id)) << id;
    }
    EXPECT_EQ(FindCommand(0), nullptr);
    EXPECT_EQ(FindCommand(0xFFFF), nullptr);
}

TEST(CommandRanges, AnIdWithoutARowIsAnEntryOfItsMenu) {
    using Range = CommandRange;
    const struct {
        int id;
        RangeCommand expected;
    } rows[] = {
        {5099, {}},
        {5100, {Range::RecentFile, 0}},
        {5109, {Range::RecentFile, 9}},
        {5111, {}},
        {5199, {}},
        {5200, {Range::AudioTrack, 0}},
        {5299, {Range::AudioTrack, 99}},
        {5300, {Range::Subtitle, 0}},
        {5349, {Range::Subtitle, 49}},
        {5352, {}},
        {5599, {}},
        {5600, {Range::OpenFavorite, 0, 0}},
        {5699, {Range::OpenFavorite, 0, 99}},
        {5700, {Range::OpenFavorite, 1, 0}},
        {5899, {Range::OpenFavorite, 2, 99}},
        {5900, {Range::ClearFavorites, 0}},
        {5949, {Range::ClearFavorites, 49}},
        {5950, {}},
        {5999, {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FindRange(row.id), row.expected) << row.id;
    }
}

TEST(KeyboardMap, EveryRowHasItsKeyAndCommandInTheOrderOfTheTable) {
    constexpr std::uint8_t kPlain = 1;
    constexpr std::uint8_t kShift = 1 | 4;
    constexpr std::uint8_t kControl = 1 | 8;
    const struct {
        int key;
        int command;
        std::uint8_t flags = kPlain;
    } rows[] = {
        {0x20, 6001}, {0x25, 6002}, {0x27, 6003},           {0x26, 6004},           {0x28, 6005},
        {0x50, 6001}, {0x57, 6010}, {0x44, 6011},           {0x53, 6012},           {0x41, 6013},
        {0x51, 6014}, {0x45, 6015}, {0x52, 6015},           {0x48, 6016},           {0x56, 6017},
        {0x4D, 6020}, {0x5A, 6021}, {0x58, 6022},           {0x43, 6023},           {0xDB, 6030},
        {0xDD, 6031}, {0xDC, 6032}, {0xBC, 6033, kShift},   {0xBC, 6033},           {0xBE, 6034, kShift},
        {0xBE, 6034}, {0xBF, 6035}, {0x4F, 6040},           {0x46, 6041},           {0x0D, 6041},
        {0x1B, 6042}, {0x31, 6050}, {0x32, 6051},           {0x33, 6052},           {0x34, 6053},
        {0x35, 6054}, {0x36, 6055}, {0x42, 6060, kControl}, {0x50, 6061, kControl},
    };
    ASSERT_EQ(std::size(rows), 39U);
    ASSERT_EQ(kKeyboardMap.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(kKeyboardMap[i].virtualKey, rows[i].key);
        EXPECT_EQ(kKeyboardMap[i].command, rows[i].command);
        EXPECT_EQ(kKeyboardMap[i].flags, rows[i].flags);
    }
}

TEST(KeyboardMap, EveryKeyLeadsToACommand) {
    for (const KeyBinding& binding : kKeyboardMap) {
        EXPECT_NE(FindCommand(binding.command), nullptr) << binding.command;
    }
}

TEST(RateRules, StepsStayWithinTheBounds) {
    EXPECT_EQ(StepRate(1.0, 0.25), 1.25);
    EXPECT_EQ(StepRate(1.0, -0.25), 0.75);
    EXPECT_EQ(StepRate(0.25, -0.25), 0.25);
    EXPECT_EQ(StepRate(0.3, -0.25), 0.25);
    EXPECT_EQ(StepRate(4.0, 0.25), 4.0);
    EXPECT_EQ(StepRate(3.9, 0.25), 4.0);
    EXPECT_DOUBLE_EQ(StepRate(1.0, -0.1), 0.9);
    EXPECT_DOUBLE_EQ(StepRate(0.3, -0.1), 0.25);
    EXPECT_DOUBLE_EQ(StepRate(3.95, 0.1), 4.0);
}

TEST(RateRules, TheToggleGoesToTheFilmsOwnSpeedAndBack) {
    EXPECT_EQ(ToggleRate(1.0, 1.0), (RateToggle{1.0, 1.0}));
    EXPECT_EQ(ToggleRate(1.25, 1.0), (RateToggle{1.0, 1.25}));
    EXPECT_EQ(ToggleRate(1.0, 1.25), (RateToggle{1.25, 1.25}));
    EXPECT_EQ(ToggleRate(2.0, 1.25), (RateToggle{1.0, 2.0}));
}

TEST(RateRules, AFrameRateNeedsThatOfTheFile) {
    EXPECT_EQ(RateForFrameRate(23.976, 23.976), 1.0);
    EXPECT_NEAR(RateForFrameRate(23.976, 120.0).value_or(0.0), 0.1998, 1e-12);
    EXPECT_EQ(RateForFrameRate(60.0, 30.0), 2.0);
    EXPECT_FALSE(RateForFrameRate(24.0, 0.0).has_value());
    EXPECT_FALSE(RateForFrameRate(24.0, -1.0).has_value());
    EXPECT_FALSE(RateForFrameRate(24.0, std::numeric_limits<double>::quiet_NaN()).has_value());
}

TEST(PositionText, HasHoursOnlyWhenThereAreAny) {
    EXPECT_EQ(FormatPosition(0.0), L"00:00");
    EXPECT_EQ(FormatPosition(59.99), L"00:59");
    EXPECT_EQ(FormatPosition(60.0), L"01:00");
    EXPECT_EQ(FormatPosition(3599.9), L"59:59");
    EXPECT_EQ(FormatPosition(3600.0), L"1:00:00");
    EXPECT_EQ(FormatPosition(36061.0), L"10:01:01");
    EXPECT_EQ(FormatPosition(-5.0), L"00:00");
    EXPECT_EQ(FormatPosition(std::numeric_limits<double>::quiet_NaN()), L"00:00");
    EXPECT_EQ(FormatPosition(std::numeric_limits<double>::infinity()), L"277777:46:40");
}

TEST(RecentMenu, AnEmptyListIsOneGreyEntry) {
    EXPECT_EQ(DescribeRecentMenu({}),
              (std::vector<MenuEntry>{{.text = L"(없음)", .id = 5100, .isGrey = true}}));
}

TEST(RecentMenu, TheTenthNameHasItsNumberAndBehindItStandsTheClearing) {
    std::vector<std::wstring> files;
    for (int i = 1; i <= 10; ++i) {
        files.push_back(L"D:\\영화\\film" + std::to_wstring(i) + L".mkv");
    }
    files[1] = L"D:/other/b.mkv";
    files[2] = L"c.mkv";
    const std::vector<MenuEntry> menu = DescribeRecentMenu(files);
    ASSERT_EQ(menu.size(), 12U);
    EXPECT_EQ(menu[0], (MenuEntry{.text = L"&1. film1.mkv", .id = 5100}));
    EXPECT_EQ(menu[1], (MenuEntry{.text = L"&2. b.mkv", .id = 5101}));
    EXPECT_EQ(menu[2], (MenuEntry{.text = L"&3. c.mkv", .id = 5102}));
    EXPECT_EQ(menu[9], (MenuEntry{.text = L"&10. film10.mkv", .id = 5109}));
    EXPECT_TRUE(menu[10].isSeparator);
    EXPECT_EQ(menu[11], (MenuEntry{.text = L"목록 지우기", .id = 5110}));
}

TEST(RecentMenu, ANameFillsTheRoomOfAnEntry) {
    const std::wstring longest(265, L'a'); // and "&1. " and the terminator
    EXPECT_EQ(DescribeRecentMenu({longest}).front().text, L"&1. " + longest);
}

} // namespace
} // namespace brindlecast

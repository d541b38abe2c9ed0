#include "app/commands.h"

#include "app/command_texts.h"
#include "ui/command_ids.h"
#include "ui/messages.h"

#include <algorithm>
#include <array>

namespace brindlecast {

namespace {

using enum CommandAction;

constexpr auto kCommands = std::to_array<Command>({
    // Of the menus.
    {5001, OpenDialog},
    {5002, Nothing},
    {5003, TogglePlay},
    {kCommandStop, Stop},
    {5005, StepKeyFrame, -1},
    {5006, StepKeyFrame, +1},
    {5014, Screenshot},
    {5015, ToggleRate},
    {5016, ChangeRate, -0.1},
    {5017, ChangeRate, +0.1},
    {5020, Nothing}, // settings open by another way
    {5021, About},
    {kCommandExit, Exit},
    {5023, FileInformation},
    {5030, SetRate, 0.25, L"0.25x"},
    {5031, SetRate, 0.5, L"0.50x"},
    {5032, SetRate, 0.75, L"0.75x"},
    {5033, SetRate, 0.9, L"0.90x"},
    {5034, SetRate, 1.0, L"1.00x"},
    {5035, SetRate, 1.1, L"1.10x"},
    {5036, SetRate, 1.25, L"1.25x"},
    {5037, SetRate, 1.5, L"1.50x"},
    {5038, SetRate, 1.75, L"1.75x"},
    {5039, SetRate, 2.0, L"2.00x"},
    {5040, SetRate, 3.0, L"3.00x"},
    {5041, SetRate, 4.0, L"4.00x"},
    {5050, SetFrameRate, 23.976, texts::kRate},
    {5051, SetFrameRate, 24.0, texts::kRate},
    {5052, SetFrameRate, 25.0, texts::kRate},
    {5053, SetFrameRate, 29.97, texts::kRate},
    {5054, SetFrameRate, 30.0, texts::kRate},
    {5055, SetFrameRate, 59.94, texts::kRate},
    {5056, SetFrameRate, 60.0, texts::kRate},
    {5060, RunCommand, kCommandKeyUpright},
    {5061, RunMessage, kMessageTurnLeft},
    {5062, RunMessage, kMessageTurnRight},
    {5063, RunMessage, kMessageFlipHorizontal},
    {5064, RunMessage, kMessageFlipVertical},
    {5065, RunCommand, kCommandKeyTurnedLeft},
    {5066, RunCommand, kCommandKeyTurnedRight},
    {5070, ResizeToVideo, 25, L"25%"},
    {5071, ResizeToVideo, 50, L"50%"},
    {5072, ResizeToVideo, 75, L"75%"},
    {5073, ResizeToVideo, 100, L"100%"},
    {5074, ResizeToVideo, 150, L"150%"},
    {5075, ResizeToVideo, 200, L"200%"},
    {5080, ResizeToMonitor, 30, L"모니터 30%"},
    {5081, ResizeToMonitor, 45, L"모니터 45%"},
    {5082, ResizeToMonitor, 60, L"모니터 60%"},
    {5083, ResizeToMonitor, 75, L"모니터 75%"},
    {kCommandClearRecent, ClearRecentFiles},
    {5180, ToggleCompression, 0, texts::kCompressionOn, texts::kCompressionOff},
    {5350, SubtitlesOff, 0, texts::kSubtitlesOff},
    {5351, OpenSubtitle, 0, texts::kSubtitlesOn},
    {5400, PressMarkA, 0, texts::kMarkASet, texts::kMarkACleared},
    {5401, PressMarkB, 0, texts::kMarkBSet, texts::kMarkBCleared},
    {5402, ClearMarks, 0, texts::kMarksCleared},
    {5500, AddFavorite},
    {5501, ManageFavorites},
    // Of the keys.
    {6001, TogglePlay},
    {6002, StepKeyFrame, -1, texts::kPosition},
    {6003, StepKeyFrame, +1, texts::kPosition},
    {6004, ChangeVolume, +1, texts::kVolume},
    {6005, ChangeVolume, -1, texts::kVolume},
    {kCommandKeyUpright, TurnUpright, 0, texts::kRotation},
    {kCommandKeyTurnedRight, SetRotation, 90, texts::kRotation},
    {6012, SetRotation, 180, texts::kRotation},
    {kCommandKeyTurnedLeft, SetRotation, 270, texts::kRotation},
    {6014, Turn, 270, texts::kRotation},
    {6015, Turn, 90, texts::kRotation},
    {6016, FlipHorizontally, 0, texts::kFlippedHorizontally, texts::kNotFlippedHorizontally},
    {6017, FlipVertically, 0, texts::kFlippedVertically, texts::kNotFlippedVertically},
    {6020, ToggleMute, 0, texts::kMuted, texts::kUnmuted},
    {6021, ToggleRate, 0, texts::kRate},
    {6022, ChangeRate, -0.25, texts::kRate},
    {6023, ChangeRate, +0.25, texts::kRate},
    {6030, PressMarkA, 0, texts::kMarkASet, texts::kMarkACleared},
    {6031, PressMarkB, 0, texts::kMarkBSet, texts::kMarkBCleared},
    {6032, ClearMarks, 0, texts::kMarksCleared},
    {6033, ShiftSubtitles, -500, texts::kSubtitleDelay},
    {6034, ShiftSubtitles, +500, texts::kSubtitleDelay},
    {6035, ResetSubtitleShift, 0, texts::kSubtitleDelayReset},
    {6040, OpenDialog},
    {6041, ToggleFullScreen},
    {6042, Escape},
    {6050, ResizeToVideo, 25, L"25%"},
    {6051, ResizeToVideo, 50, L"50%"},
    {6052, ResizeToVideo, 75, L"75%"},
    {6053, ResizeToVideo, 100, L"100%"},
    {6054, ResizeToVideo, 150, L"150%"},
    {6055, ResizeToVideo, 200, L"200%"},
    {6060, AddFavorite},
    {6061, Screenshot},
});
static_assert(std::ranges::is_sorted(kCommands, {}, &Command::id));

struct Range {
    int first;
    int last;
    CommandRange range;
};
// In the order in which they are tried.
constexpr std::array kRanges = {
    Range{5200, 5299, CommandRange::AudioTrack},   Range{5300, 5349, CommandRange::Subtitle},
    Range{5100, 5109, CommandRange::RecentFile},   Range{5900, 5949, CommandRange::ClearFavorites},
    Range{5600, 5899, CommandRange::OpenFavorite},
};
constexpr int kFavoritesPerGroup = 100;

} // namespace

std::span<const Command> Commands() {
    return kCommands;
}

const Command* FindCommand(int id) {
    const auto found = std::ranges::lower_bound(kCommands, id, {}, &Command::id);
    return found != kCommands.end() && found->id == id ? &*found : nullptr;
}

RangeCommand FindRange(int id) {
    const auto found = std::ranges::find_if(
        kRanges, [id](const Range& range) { return id >= range.first && id <= range.last; });
    if (found == kRanges.end()) {
        return {};
    }
    const int entry = id - found->first;
    if (found->range == CommandRange::OpenFavorite) {
        return {found->range, entry / kFavoritesPerGroup, entry % kFavoritesPerGroup};
    }
    return {found->range, entry};
}

} // namespace brindlecast

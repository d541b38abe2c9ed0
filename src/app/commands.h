#pragma once

#include <cstdint>
#include <span>

namespace brindlecast {

// What a command does. The comments say what `amount` of its row means; without one it means nothing.
enum class CommandAction : std::uint8_t {
    Nothing,
    TogglePlay,
    Stop,
    OpenDialog,
    Screenshot,
    About,
    Exit,
    FileInformation,
    ToggleFullScreen,
    Escape,
    AddFavorite,
    ManageFavorites,
    ClearRecentFiles,
    StepKeyFrame, // above 0 forward, below 0 backward
    ChangeVolume, // above 0 louder, below 0 quieter
    ToggleMute,
    TurnUpright, // no rotation and no flip
    SetRotation, // degrees
    Turn,        // degrees to add
    FlipHorizontally,
    FlipVertically,
    ToggleRate,
    ChangeRate,   // to add
    SetRate,      // the rate
    SetFrameRate, // frames per second
    PressMarkA,
    PressMarkB,
    ClearMarks,
    ShiftSubtitles, // milliseconds to add
    ResetSubtitleShift,
    SubtitlesOff,
    OpenSubtitle,
    ToggleCompression,
    ResizeToVideo,   // percent
    ResizeToMonitor, // percent
    RunCommand,      // another command's id
    RunMessage       // a message of the main window
};

// One command: what it does, and the on-screen message after it, shown for kCommandHold milliseconds. A null
// text shows nothing; a format takes the new value. An action with two outcomes shows `otherText` for what
// was turned off.
struct Command {
    int id;
    CommandAction action;
    double amount = 0.0;
    const wchar_t* text = nullptr;
    const wchar_t* otherText = nullptr;
};

// All commands with an id of their own, by rising id.
[[nodiscard]] std::span<const Command> Commands();
// Null for an id that has no row.
[[nodiscard]] const Command* FindCommand(int id);

// Milliseconds.
inline constexpr unsigned kCommandHold = 1000;

enum class CommandRange : std::uint8_t {
    None,
    AudioTrack,
    Subtitle,
    RecentFile,
    ClearFavorites,
    OpenFavorite
};

// A command of a range: the menu entry that it stands for, from 0; for OpenFavorite, group and item.
struct RangeCommand {
    CommandRange range = CommandRange::None;
    int index = 0;
    int item = 0;
    bool operator==(const RangeCommand&) const = default;
};

// What an id without a row of its own means.
[[nodiscard]] RangeCommand FindRange(int id);

} // namespace brindlecast

#include "tests/e2e/storm.h"

#include "app/accelerators.h"
#include "app/commands.h"
#include "base/utf8.h"
#include "tests/e2e/environment.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"
#include "ui/messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>

namespace brindlecast::testing {

namespace {

using std::chrono::milliseconds;

constexpr WPARAM kOpenDialog = 5001;
constexpr WPARAM kAbout = 5021;

// How long a window may take to come to the front, which is not what is tested.
constexpr milliseconds kToTheFront{500};

// Where a window of any size lies on the screen with its middle, and how long most drops take.
constexpr Point kNear{20, 20};
constexpr milliseconds kDropTime{300};

constexpr std::array kMedia = {L"film.mkv",       L"film.mp4",       L"second.mkv",
                               L"short.mkv",      L"silent.mkv",     L"한국어 영화 01화.mkv",
                               L"anamorphic.mp4", L"rotated.mp4",    L"film_1080p.mkv",
                               L"live.mkv",       L"no_cues.mkv",    L"tracks.mkv",
                               L"song.mp3",       L"song_cover.mp3", L"song.flac",
                               L"empty.mkv",      L"text.mkv",       L"truncated.mkv",
                               L"truncated.mp4",  L"missing.mkv"};

// What opens a window of its own and waits for its end, or ends the program.
bool IsModal(const brindlecast::Command& command) {
    using enum CommandAction;
    switch (command.action) {
    case OpenDialog:
    case About:
    case Exit:
    case FileInformation:
    case AddFavorite:
    case ManageFavorites:
    case OpenSubtitle: return true;
    default: return false;
    }
}

void Press(const KeyBinding& key) {
    if ((key.flags & kWithControl) != 0) {
        PressKeyWith(VK_CONTROL, key.virtualKey);
    } else if ((key.flags & kWithShift) != 0) {
        PressKeyWith(VK_SHIFT, key.virtualKey);
    } else {
        PressKey(key.virtualKey);
    }
}

} // namespace

Storm::Storm(Player& stormedPlayer, std::uint32_t seed) : player(stormedPlayer), generator(seed) {
    for (const brindlecast::Command& command : Commands()) {
        if (!IsModal(command)) {
            commands.push_back(command.id);
        }
    }
}

StormStep Storm::Next() {
    struct Kind {
        int share; // in hundredths
        StormStep (Storm::*make)();
    };
    static constexpr Kind kKinds[] = {{24, &Storm::Command},   {4, &Storm::CommandWithoutRow},
                                      {19, &Storm::Message},   {20, &Storm::Keys},
                                      {7, &Storm::Place},      {3, &Storm::Show},
                                      {4, &Storm::FullScreen}, {6, &Storm::Mouse},
                                      {6, &Storm::Drop},       {1, &Storm::Dialog},
                                      {6, &Storm::Pause}};
    int left = Random(100);
    for (const Kind& kind : kKinds) {
        if (left < kind.share) {
            return (this->*kind.make)();
        }
        left -= kind.share;
    }
    return Pause();
}

int Storm::Random(int count) {
    return static_cast<int>(generator() % static_cast<unsigned>(count));
}

StormStep Storm::Command() {
    const int id = OneOf(commands);
    return {"command " + std::to_string(id), [this, id] {
                player.Send(WM_COMMAND, static_cast<WPARAM>(id));
            }};
}

StormStep Storm::CommandWithoutRow() {
    int id = 0;
    do {
        id = 5000 + Random(1200);
    } while (FindCommand(id) != nullptr);
    return {"command " + std::to_string(id), [this, id] {
                player.Send(WM_COMMAND, static_cast<WPARAM>(id));
            }};
}

StormStep Storm::Message() {
    static constexpr unsigned kNumbers[] = {
        kMessageGraphEvent,     kMessageTogglePlay,     kMessageStop,
        kMessageStepBackward,   kMessageStepForward,    kMessageIsPlaying,
        kMessageSeek,           kMessageSetVolume,      kMessageSetMuted,
        kMessageTurnLeft,       kMessageTurnRight,      kMessageFlipHorizontal,
        kMessageFlipVertical,   kMessageTogglePlaylist, kMessageToggleFullScreen,
        kMessagePlayItem,       kMessagePlayItemAt,     kMessagePlaylistHidden,
        kMessageCurrentPosition};
    const unsigned number = OneOf(kNumbers);
    int wParam = Random(12);
    if (number == kMessageSeek) {
        wParam = Random(11000);
    } else if (number == kMessageSetVolume) {
        wParam = Random(120);
    }
    const int lParam = number == kMessagePlayItemAt ? Random(20000) : 0;
    return {"message " + std::to_string(number) + " " + std::to_string(wParam) + " " + std::to_string(lParam),
            [this, number, wParam, lParam] {
                player.Send(number, static_cast<WPARAM>(wParam), lParam);
            }};
}

// Several at once come faster than they are handled.
StormStep Storm::Keys() {
    StormStep step;
    std::vector<KeyBinding> keys;
    const int count = Random(4) == 0 ? 2 + Random(5) : 1;
    while (static_cast<int>(keys.size()) < count) {
        const KeyBinding key = OneOf(kKeyboardMap);
        const auto* const command = FindCommand(key.command);
        if (command != nullptr && !IsModal(*command)) {
            keys.push_back(key);
            step.text += (step.text.empty() ? "key " : ", ") + std::to_string(key.virtualKey) + " with " +
                         std::to_string(key.flags);
        }
    }
    step.run = [this, keys] {
        BringToFront();
        std::ranges::for_each(keys, Press);
    };
    return step;
}

StormStep Storm::Place() {
    const Rect place{Random(1600) - 200, Random(900) - 100, 100 + Random(1800), 50 + Random(1000)};
    const bool moveAlone = Random(3) == 0;
    return {(moveAlone ? "move to " : "place at ") + std::to_string(place.left) + ", " +
                std::to_string(place.top) + (moveAlone ? "" : ", size ") +
                (moveAlone ? "" : std::to_string(place.right) + " by " + std::to_string(place.bottom)),
            [this, place, moveAlone] {
                SetWindowPos(player.MainWindow(), nullptr, place.left, place.top, place.right, place.bottom,
                             SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS |
                                 (moveAlone ? SWP_NOSIZE : 0U));
            }};
}

StormStep Storm::Show() {
    static constexpr int kStates[] = {SW_MAXIMIZE, SW_MINIMIZE, SW_RESTORE};
    const int state = OneOf(kStates);
    return {"show as " + std::to_string(state), [this, state] {
                ShowWindowAsync(player.MainWindow(), state);
            }};
}

StormStep Storm::FullScreen() {
    return {"full screen to and fro", [this] {
                player.Send(kMessageToggleFullScreen);
            }};
}

StormStep Storm::Mouse() {
    const int kind = Random(4);
    const int x = Random(100);
    const int y = Random(100);
    const int notches = Random(5) - 2;
    static constexpr const char* kNames[] = {"click", "double click", "wheel", "drag"};
    return {std::string(kNames[kind]) + " at " + std::to_string(x) + "%, " + std::to_string(y) + "%",
            [this, kind, x, y, notches] {
                const Rect part = SafePart();
                if (part.Width() <= 0) {
                    return;
                }
                const Point point{part.left + part.Width() * x / 100, part.top + part.Height() * y / 100};
                switch (kind) {
                case 0: Click(point); break;
                case 1: DoubleClick(point); break;
                case 2: TurnWheel(point, notches); break;
                default: Drag(point, {point.x + 10 * (y - 50) / 10, point.y + 10 * (x - 50) / 10}); break;
                }
            }};
}

StormStep Storm::Drop() {
    StormStep step;
    std::vector<std::wstring> paths;
    const int count = Random(4) == 0 ? 2 + Random(3) : 1;
    for (int i = 0; i < count; ++i) {
        const wchar_t* const name = OneOf(kMedia);
        paths.push_back(Media(name));
        step.text += (i == 0 ? "drop " : ", ") + WideToUtf8(name);
    }
    step.run = [this, paths] {
        BringToFront();
        // Neither full screen nor what lies beyond the screen takes drops.
        if ((GetWindowLongPtrW(player.MainWindow(), GWL_EXSTYLE) & WS_EX_ACCEPTFILES) == 0) {
            player.Send(kMessageToggleFullScreen);
        }
        SetWindowPos(player.MainWindow(), nullptr, kNear.x, kNear.y, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
        player.Drop(paths);
        LetPlay(kDropTime);
    };
    return step;
}

StormStep Storm::Dialog() {
    if (Random(2) == 0) {
        return {"the open dialog", [this] {
                    OpenAndLeave(kOpenDialog, IDCANCEL);
                }};
    }
    return {"the about box", [this] {
                OpenAndLeave(kAbout, IDOK);
            }};
}

StormStep Storm::Pause() {
    const int time = 20 + Random(400);
    return {"let it play for " + std::to_string(time) + " ms", [time] {
                LetPlay(milliseconds(time));
            }};
}

void Storm::BringToFront() const {
    Restore();
    SetForegroundWindow(player.MainWindow());
    WaitUntil(kToTheFront, "coming to the front",
              [this] { return GetForegroundWindow() == player.MainWindow(); });
}

void Storm::Restore() const {
    if (IsIconic(player.MainWindow()) != FALSE) {
        ShowWindowAsync(player.MainWindow(), SW_RESTORE);
        WaitUntil(kToTheFront, "restoring", [this] { return IsIconic(player.MainWindow()) == FALSE; });
    }
}

Rect Storm::SafePart() const {
    const Rect picture = ScreenRectOf(player.VideoWindow());
    if (IsIconic(player.MainWindow()) != FALSE || picture.Width() < 40 || picture.Height() < 40) {
        return {};
    }
    return {picture.left + picture.Width() / 4, picture.top + picture.Height() / 4,
            picture.right - picture.Width() / 4, picture.bottom - picture.Height() / 4};
}

void Storm::OpenAndLeave(WPARAM command, WPARAM answer) const {
    BringToFront();
    PostMessageW(player.MainWindow(), WM_COMMAND, command, 0);
    HWND dialog = nullptr;
    EXPECT_TRUE(WaitUntil(limits::kDialog, "dialog", [&] {
        dialog = player.OwnProcess().FindVisibleWindow(L"#32770");
        return dialog != nullptr;
    }));
    PostMessageW(dialog, WM_COMMAND, answer, 0);
    EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of a dialog", [&] { return IsWindow(dialog) == FALSE; }));
}

} // namespace brindlecast::testing

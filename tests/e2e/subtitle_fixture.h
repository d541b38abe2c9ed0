#pragma once

#include "tests/e2e/film_folder.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/message_picture.h"
#include "tests/e2e/subtitle_picture.h"
#include "tests/e2e/waits.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace brindlecast::testing {

// Films in a folder of their own with subtitle files beside them. Frame n of each film begins at 40 n
// milliseconds, every fiftieth is a keyframe.
class SubtitleTest : public ProgramTest {
protected:
    static constexpr UINT kSeek = 1230; // wParam: ten-thousandths of the duration
    static constexpr int kFrames = 500;
    static constexpr WPARAM kTwiceTheSize = 5075;
    static constexpr WPARAM kSubtitlesOff = 5350;
    static constexpr WPARAM kFirstSubtitle = 5300;

    // A film of 20 seconds; the name must outlive what is returned.
    [[nodiscard]] Film AddFilm(const wchar_t* name) const {
        std::filesystem::copy_file(Media(kFilmMp4.name), folder.Path(name));
        return {name, kFilmMp4.width, kFilmMp4.height, kFilmMp4.framesPerSecond};
    }
    std::wstring AddText(const std::wstring& name, const std::string& text) const {
        std::ofstream file(std::filesystem::path(folder.Path(name)), std::ios::binary);
        file << text;
        return folder.Path(name);
    }

    // Drops a film of the folder and waits until its picture moves.
    [[nodiscard]] bool Play(Player& player, const Film& film) const {
        player.Drop({folder.Path(film.name)});
        const std::wstring title = std::wstring(L"Brindlecast - ") + film.name;
        if (!WaitUntil(limits::kPicture, "title", [&] { return player.Title() == title; })) {
            return false;
        }
        // The first reading may still be the picture of a former film.
        const std::optional<int> first = player.WaitForFrame(film);
        std::optional<int> second;
        return first &&
               WaitUntil(limits::kReaction, "another picture",
                         [&] {
                             second = player.FrameOnScreen(film);
                             return second && *second != *first;
                         }) &&
               WaitUntil(limits::kReaction, "moving picture",
                         [&] { return player.FrameOnScreen(film).value_or(*second) > *second; });
    }
    [[nodiscard]] bool PlayAndPause(Player& player, const Film& film) const {
        if (!Play(player, film)) {
            return false;
        }
        player.Activate();
        PressKey(VK_SPACE);
        return player.WaitForStandstill(film).has_value();
    }
    // The same at twice the film's size, where the blocks' edges lie on whole pixels.
    [[nodiscard]] bool PlayLargeAndPause(Player& player, const Film& film) const {
        if (!PlayAndPause(player, film)) {
            return false;
        }
        EXPECT_EQ(player.Send(WM_COMMAND, kTwiceTheSize), 0);
        return WaitUntil(limits::kReaction, "twice the size",
                         [&] { return player.PictureOnScreen(film).Width() == 2 * film.width; });
    }
    // Goes to that keyframe of a paused film; from itself by way of another, so that it is drawn anew.
    [[nodiscard]] static Sight SightAt(const Player& player, const Film& film, int keyframe) {
        if (player.FrameOnScreen(film) == keyframe) {
            SeekTo(player, film, keyframe == 450 ? 0 : 450);
        }
        SeekTo(player, film, keyframe);
        const Sight sight = LookAt(player, film);
        EXPECT_EQ(sight.frame, keyframe);
        return sight;
    }
    // That what is done shows a message over a paused picture.
    static void ExpectMessage(const Player& player, const std::wstring& text,
                              const std::function<void()>& action) {
        ASSERT_TRUE(player.WaitUntilNoMessageShows());
        const Rect strip = MessageStrip(player);
        // The screen may still show the end of the former one's fade.
        Photograph under;
        ASSERT_TRUE(WaitUntil(limits::kReaction, "a still picture", [&] {
            under = PhotographScreen(strip);
            LetPlay(std::chrono::milliseconds(100));
            return PhotographScreen(strip).pixels == under.pixels;
        }));
        const MessagePicture expected(text, {strip.Width(), strip.Height()});
        action();
        EXPECT_TRUE(WaitUntil(limits::kReaction, "a message over the picture", [&] {
            return expected.IsOver(under, PhotographScreen(strip));
        })) << ::testing::PrintToString(text);
    }

    FilmFolder folder;

private:
    static void SeekTo(const Player& player, const Film& film, int keyframe) {
        EXPECT_EQ(player.Send(kSeek, static_cast<WPARAM>(keyframe * 10'000 / kFrames)), 0);
        EXPECT_TRUE(player.WaitForFrameNumber(film, keyframe)) << keyframe;
    }
};

} // namespace brindlecast::testing

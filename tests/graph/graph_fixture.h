#pragma once

#include "engine/player_engine.h"
#include "tests/graph/fakes/recorder.h"
#include "tests/support/fake_settings_store.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace brindlecast::testing {

using Lines = std::vector<std::wstring>;

// Appends lists to one another.
[[nodiscard]] Lines Join(std::initializer_list<Lines> lists);

// Compares whole lists and shows where they part.
void ExpectLines(const Lines& expected, const Lines& actual);

// What the platform's sound renderers do when they are created.
enum class SoundRenderer { Works, Fails };

// An engine over fake modules. What is recorded as a call is one list in time order: the calls that the fakes
// got ("LAVVideo.SetHWAccel(5)") and the diagnostic lines ("> OpenFile with HWAccel=5", without their
// prefix). The folder of the modules appears as <dir>. When a test ends no fake may live any more.
class GraphTest : public ::testing::Test {
protected:
    GraphTest();
    ~GraphTest() override;
    void TearDown() override;

    // The calls since the last ClearCalls.
    [[nodiscard]] static Lines Calls();
    // The calls that begin with `prefix`, as "LAVVideo." or "> ".
    [[nodiscard]] static Lines CallsOf(const std::wstring& prefix);
    // What was only asked, and begins with `prefix`.
    [[nodiscard]] static Lines QueriesOf(const std::wstring& prefix);
    [[nodiscard]] static std::size_t CountOf(const Lines& lines, const std::wstring& line);
    // The calls, and among them Run, Pause, Stop and "leaves the graph" of all filters.
    [[nodiscard]] static Lines CallsAndStates();
    // Run, Pause, Stop and "leaves the graph" of one filter, in order.
    [[nodiscard]] static Lines StatesOf(const std::wstring& module);
    static void ClearCalls() { RecorderClearLines(); }

    // Drops every reference to a module that earlier builds have left.
    static void UnloadModule(const std::wstring& fileName);
    // Lets the module's file be missing until the test ends.
    void HideModule(const std::wstring& fileName);
    // Puts a file without entry points in the module's place until the test ends.
    void ReplaceModule(const std::wstring& fileName, const std::wstring& source);
    void RegisterSound(SoundRenderer directSound, SoundRenderer waveOut);
    // Lets creating the platform's filter graph fail until the test ends.
    void RegisterFailingGraph();

    void SetNumber(const char* key, long value) { RecorderSetNumber(key, value); }
    void SetText(const char* key, const wchar_t* value) { RecorderSetText(key, value); }

    [[nodiscard]] static std::wstring ModulePath(const std::wstring& fileName);

    FakeSettingsStore settings;
    std::unique_ptr<PlayerEngine> engine;
    HWND host = nullptr;

private:
    void RevokeClasses();

    std::vector<std::wstring> hidden;
    DWORD directSoundCookie = 0;
    DWORD waveOutCookie = 0;
    DWORD graphCookie = 0;
};

// A film with one video and one audio stream, keyframes at 0, 2 and 4 s, 1920x1080 at 25 frames a second.
inline constexpr const wchar_t* kFilm = L"C:\\films\\film.mkv";
inline constexpr const wchar_t* kFilmPins = L"Video:video/1920/1080/400000;Audio:audio";

// What a build does, step by step, with default settings and everything working.
namespace expected {
[[nodiscard]] Lines RendererStart();
[[nodiscard]] Lines SplitterStart(const std::wstring& path = kFilm);
[[nodiscard]] Lines ThreeKeyFrames();
// `method` is the one asked for, and supported.
[[nodiscard]] Lines VideoDecoderStart(int method = 5, const wchar_t* methodName = L"D3D11");
// The settings behind the choice of the method.
[[nodiscard]] Lines VideoDecoderSettings();
[[nodiscard]] Lines AudioDecoderStart();
[[nodiscard]] Lines SwitcherStart();
[[nodiscard]] Lines SoundStart();
// The graph manager's own seek at the end of priming.
[[nodiscard]] Lines Priming();
[[nodiscard]] Lines AudioChain();
[[nodiscard]] Lines VideoPin();
// `host` 1000 by 1000, the video 1920 by 1080.
[[nodiscard]] Lines GraphEnd(int amplitude = -602);
// What closing a stopped graph does.
[[nodiscard]] Lines Close();
// All of the above for the film, but for closing it.
[[nodiscard]] Lines FilmBuild(int method = 5, const wchar_t* methodName = L"D3D11");
// The same for a file of sound alone.
[[nodiscard]] Lines SoundBuild(int method = 5, const wchar_t* methodName = L"D3D11");
// One build of a file whose Load fails with E_FAIL.
[[nodiscard]] Lines FailedLoad();
} // namespace expected

} // namespace brindlecast::testing

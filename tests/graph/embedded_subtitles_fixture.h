#pragma once

#include "base/win32/unique_handle.h"
#include "engine/graph_pins.h"
#include "engine/subtitle_grabber.h"
#include "subtitles/subtitle_manager.h"
#include "tests/graph/graph_fixture.h"
#include "tests/graph/tool_watch.h"

#include <optional>
#include <string>
#include <utility>

namespace brindlecast::testing {

// Subtitle tracks 0, 1 and 2 are the streams 1, 3 and 4.
inline constexpr const wchar_t* kTextStreams =
    L"video:1:H.264;subtitle:0:English [subrip];audio:1:Korean;text:0:-;subtitle:0:Japanese [ass]";

inline constexpr const char* kSubRipText = "1\n00:00:01,000 --> 00:00:02,000\nHello\n";
inline constexpr const char* kAdvancedText =
    "[Script Info]\nScriptType: v4.00+\n\n[V4+ Styles]\nFormat: Name, Fontname, Fontsize\n"
    "Style: Default,Malgun Gothic,18\n\n[Events]\nFormat: Layer, Start, End, Style, Text\n"
    "Dialogue: 0,0:00:01.00,0:00:02.00,Default,Hello\n";

// Text tracks inside a file. The tool beside the program is a fake, which does what the test tells it.
class EmbeddedSubtitlesTest : public GraphTest {
protected:
    void SetUp() override {
        SetText("LAVSplitter.streams", kTextStreams);
        Forget();
        SetEnvironmentVariableW(L"BRINDLECAST_TOOL_LOG", LogPath().c_str());
    }
    void TearDown() override {
        Forget();
        SetEnvironmentVariableW(L"BRINDLECAST_TOOL_LOG", nullptr);
        GraphTest::TearDown();
    }

    void Open(const std::wstring& path = kFilm) {
        ASSERT_TRUE(engine->OpenFile(path));
        ClearCalls();
        settings.reads.clear();
        settings.writes.clear();
    }
    void UseMethod(std::uint32_t method) { settings.values[L"EmbeddedSubtitleMethod"] = method; }

    // What the tool writes into its output; without this it writes none.
    void ToolGives(const std::string& content) {
        WriteBytes(ContentPath(), content);
        SetEnvironmentVariableW(L"BRINDLECAST_TOOL_GIVES", ContentPath().c_str());
    }
    void ToolEndsWith(int exitCode) {
        SetEnvironmentVariableW(L"BRINDLECAST_TOOL_EXIT", std::to_wstring(exitCode).c_str());
    }
    // How the tool was started, each time, with <dir> and <temp> for the folders.
    [[nodiscard]] Lines ToolStarts() const {
        const std::string bytes = ReadBytes(LogPath()).value_or("");
        const std::wstring text(reinterpret_cast<const wchar_t*>(bytes.data()),
                                bytes.size() / sizeof(wchar_t));
        Lines lines;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find(L'\n', at);
            lines.push_back(Shortened(text.substr(at, end - at)));
            at = end + 1;
        }
        return lines;
    }
    // The command that takes a track of the open film out.
    [[nodiscard]] static std::wstring Command(int ordinal, const std::wstring& extension) {
        return L"\"<dir>\\ffmpeg.exe\" -y -i \"C:\\films\\film.mkv\" -map 0:s:" + std::to_wstring(ordinal) +
               L" -c:s copy \"<temp>Brindlecast_embedded_sub" + extension + L"\"";
    }

    [[nodiscard]] static std::wstring Extracted(const std::wstring& extension) {
        return TemporaryPath(L"Brindlecast_embedded_sub" + extension);
    }
    static void WriteBytes(const std::wstring& path, const std::string& bytes) {
        const UniqueFile file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        DWORD written = 0;
        ASSERT_TRUE(file &&
                    WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    }
    // Nothing when the file is not there.
    [[nodiscard]] static std::optional<std::string> ReadBytes(const std::wstring& path) {
        const UniqueFile file(
            CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        if (!file) {
            return std::nullopt;
        }
        std::string bytes(GetFileSize(file.Get(), nullptr), '\0');
        DWORD got = 0;
        ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr);
        bytes.resize(got);
        return bytes;
    }
    [[nodiscard]] static std::wstring Shortened(std::wstring line) {
        const std::wstring folder = ModulePath(L"");
        for (const auto& [part, replacement] : {std::pair(folder.substr(0, folder.size() - 1), L"<dir>"),
                                                std::pair(TemporaryPath(L""), L"<temp>")}) {
            for (std::size_t at = line.find(part); at != std::wstring::npos; at = line.find(part)) {
                line.replace(at, part.size(), replacement);
            }
        }
        return line;
    }

    // What a load that failed leaves alone.
    void ExpectNothingLoaded(std::int32_t track = -1) const {
        EXPECT_EQ(track, engine->embeddedSubtitleTrack);
        EXPECT_EQ(Lines{}, settings.writes);
    }
    // What every load that succeeded has done.
    void ExpectLoaded(std::int32_t track) const {
        EXPECT_EQ(track, engine->embeddedSubtitleTrack);
        EXPECT_EQ(Lines{L"SubtitleEnabled"}, settings.writes);
        EXPECT_EQ(1U, std::get<std::uint32_t>(settings.values.at(L"SubtitleEnabled")));
        ASSERT_NE(nullptr, engine->subtitleManager);
        EXPECT_TRUE(engine->subtitleManager->enabled);
        ASSERT_NE(nullptr, engine->subtitleCallback);
        EXPECT_EQ(engine->subtitleManager.get(), engine->subtitleCallback->manager);
    }

private:
    [[nodiscard]] static std::wstring TemporaryPath(const std::wstring& name) {
        // Asked for once, so that a ToolWatch sees only what the engine asks.
        static const std::wstring folder = [] {
            wchar_t path[MAX_PATH + 1] = {};
            GetTempPathW(MAX_PATH + 1, path);
            return std::wstring(path);
        }();
        return folder + name;
    }
    [[nodiscard]] static std::wstring LogPath() { return TemporaryPath(L"fake_tool_log.txt"); }
    [[nodiscard]] static std::wstring ContentPath() { return TemporaryPath(L"fake_tool_content.txt"); }
    // Of this test and of one that crashed.
    static void Forget() {
        for (const std::wstring& path : {Extracted(L".srt"), Extracted(L".ass"), LogPath(), ContentPath()}) {
            DeleteFileW(path.c_str());
        }
        for (const wchar_t* name :
             {L"BRINDLECAST_TOOL_GIVES", L"BRINDLECAST_TOOL_EXIT", L"BRINDLECAST_TOOL_AWAITS"}) {
            SetEnvironmentVariableW(name, nullptr);
        }
    }
};

// Text tracks whose samples are grabbed from the film, from a pin that comes when a track is enabled.
class GrabberTest : public EmbeddedSubtitlesTest {
protected:
    void SetUp() override {
        EmbeddedSubtitlesTest::SetUp();
        UseMethod(1);
        SetText("LAVSplitter.enabledPins", L"Subtitle:subtitle");
    }
    // The name of the splitter's first output that is not connected.
    [[nodiscard]] std::wstring FreeSplitterPin() const {
        const ComPtr<IPin> pin = FindUnconnectedPin(engine->splitter.Get(), PINDIR_OUTPUT);
        return pin != nullptr ? PinName(pin.Get()) : L"";
    }
    // What the filters and the splitter were told, without the lines of the loading of subtitles.
    [[nodiscard]] static Lines FilterCalls() {
        Lines lines = Calls();
        std::erase_if(lines, [](const std::wstring& line) { return line.starts_with(L"> "); });
        return lines;
    }
};

} // namespace brindlecast::testing

#pragma once

#include "playlist_ui/playlist_window.h"
#include "tests/graph/main_window_fixture.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace brindlecast::testing {

// The main window with a play list that the test fills. The files exist in name only: whether one opens is up
// to the fake splitter.
class MainWindowListTest : public MainWindowTest {
protected:
    static std::wstring PathOf(const std::wstring& name) { return L"C:\\films\\" + name; }

    // The window's own list.
    [[nodiscard]] PlaylistWindow& List() const {
        Search search{window->Handle(), nullptr};
        EnumThreadWindows(GetCurrentThreadId(), CheckWindow, reinterpret_cast<LPARAM>(&search));
        // Every window of ours keeps its object there.
        auto* const object = reinterpret_cast<Window*>(GetWindowLongPtrW(search.found, GWLP_USERDATA));
        return *static_cast<PlaylistWindow*>(object);
    }
    void Fill(const std::vector<std::wstring>& names) {
        PlaylistModel& model = List().model;
        model.Clear();
        for (const std::wstring& name : names) {
            model.items.push_back(model.MakePlaylistItem(PathOf(name)));
        }
        model.RebuildView();
    }
    [[nodiscard]] std::vector<std::wstring> NamesInList() const {
        std::vector<std::wstring> names;
        for (const PlaylistItem& item : List().model.items) {
            names.push_back(item.file_name);
        }
        return names;
    }
    // Plays an item, waits until its graph runs, and forgets the calls that this took.
    void Play(int index) {
        ClearCalls();
        Send(kMessagePlayItem, static_cast<WPARAM>(index));
        ASSERT_TRUE(WaitUntilRunning());
        ClearCalls();
    }
    // The graph may be made to run by another thread.
    [[nodiscard]] bool WaitUntilRunning() {
        return HandleMessagesUntil(
            [] { return std::ranges::count(StatesOf(L"MpcVideoRenderer64"), L"Run") > 0; });
    }
    // Lets the film that runs now come to its end, and handles what follows from it.
    void LetFileEndOnce() {
        LetFilesEnd(true);
        // A seek makes the renderers run anew.
        Send(kMessageStepForward);
        LetFilesEnd(false);
        ClearCalls();
        HandleMessages();
    }
    // The names of the files that the splitter was asked to load since the last ClearCalls.
    static std::vector<std::wstring> Loads() {
        const std::wstring begin = L"LAVSplitter.Load(" + PathOf(L"");
        const std::wstring end = L", null)";
        std::vector<std::wstring> names;
        for (const std::wstring& line : CallsOf(begin)) {
            names.push_back(line.substr(begin.size(), line.size() - begin.size() - end.size()));
        }
        return names;
    }
    static Lines Seeks() { return CallsOf(L"LAVSplitter.SetPositions("); }
    // Those since the last file was loaded; before that the former one is closed, which seeks too.
    static Lines SeeksInNewFile() {
        Lines lines = CallsOf(L"LAVSplitter.");
        const auto isLoad = [](const std::wstring& line) {
            return line.starts_with(L"LAVSplitter.Load(");
        };
        lines.erase(lines.begin(), std::find_if(lines.rbegin(), lines.rend(), isLoad).base());
        std::erase_if(
            lines, [](const std::wstring& line) { return !line.starts_with(L"LAVSplitter.SetPositions("); });
        return lines;
    }
    [[nodiscard]] std::wstring Title() const {
        std::array<wchar_t, 128> title{};
        GetWindowTextW(window->Handle(), title.data(), static_cast<int>(title.size()));
        return title.data();
    }

private:
    struct Search {
        HWND owner;
        HWND found;
    };
    static BOOL CALLBACK CheckWindow(HWND candidate, LPARAM parameter) {
        auto* const search = reinterpret_cast<Search*>(parameter);
        std::array<wchar_t, 64> name{};
        GetClassNameW(candidate, name.data(), static_cast<int>(name.size()));
        if (GetWindow(candidate, GW_OWNER) == search->owner &&
            name.data() == std::wstring(L"BrindlecastPlaylist")) {
            search->found = candidate;
        }
        return TRUE;
    }
};

} // namespace brindlecast::testing

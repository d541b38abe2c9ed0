#include "tests/filters/roads/road_fixture.h"

#include "base/trace.h"
#include "base/utf8.h"
#include "tests/e2e/environment.h"
#include "tests/e2e/waits.h"

#include <evcode.h>

#include <algorithm>
#include <cmath>
#include <thread>

namespace brindlecast::testing {

namespace {

constexpr std::chrono::milliseconds kStep{5};

MediaEntry EntryOf(const wchar_t* name) {
    const std::vector<MediaEntry> entries = ReadManifest(WideToUtf8(Media(L"")));
    const std::string wanted = WideToUtf8(name);
    const auto found = std::ranges::find(entries, wanted, &MediaEntry::name);
    return found != entries.end() ? *found : MediaEntry{};
}

} // namespace

void RoadTest::SetUp() {
    store.values[L"AudioNormalize"] = 0U;
    SetTraceSink([this](std::wstring_view line) {
        const std::lock_guard lock(linesMutex);
        lines.emplace_back(line);
    });
    host = CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 640, 360, nullptr,
                           nullptr, nullptr, nullptr);
    engine = std::make_unique<PlayerEngine>(store);
    engine->videoHost = host;
    engine->volume = 1.0F;
}

void RoadTest::TearDown() {
    engine.reset();
    DestroyWindow(host);
    SetTraceSink({});
}

void RoadTest::ShowHost(int width, int height) {
    SetWindowPos(host, HWND_TOPMOST, 0, 0, width, height, SWP_SHOWWINDOW | SWP_NOACTIVATE);
    engine->RedrawVideo();
}

bool RoadTest::Open(const wchar_t* name) {
    film = EntryOf(name);
    return engine->OpenFile(Media(name));
}

void RoadTest::OpenRunning(const wchar_t* name) {
    ASSERT_TRUE(Open(name));
    ASSERT_TRUE(engine->Play());
    if (engine->hasVideo) {
        ASSERT_TRUE(PumpUntil(limits::kPicture, [this] { return FrameOnScreen().value_or(0) > 0; }));
    }
}

void RoadTest::OpenPaused(const wchar_t* name) {
    OpenRunning(name);
    ASSERT_TRUE(SUCCEEDED(engine->control->Pause()));
    engine->state = kEnginePaused;
}

bool RoadTest::PumpUntil(Milliseconds limit, const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        for (MSG message{}; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;) {
            DispatchMessageW(&message);
        }
        std::this_thread::sleep_for(kStep);
    }
    return true;
}

void RoadTest::PumpFor(Milliseconds time) {
    static_cast<void>(PumpUntil(time, [] { return false; }));
}

bool RoadTest::WaitForEnd(Milliseconds limit) const {
    return PumpUntil(limit, [this] {
        long code = 0;
        LONG_PTR first = 0;
        LONG_PTR second = 0;
        while (SUCCEEDED(engine->events->GetEvent(&code, &first, &second, 0))) {
            engine->events->FreeEventParams(code, first, second);
            if (code == EC_COMPLETE) {
                return true;
            }
        }
        return false;
    });
}

std::optional<int> RoadTest::FrameOnScreen() const {
    const Photograph photograph = PhotographHost();
    const PixelRect window = {0, 0, photograph.width, photograph.height};
    const auto mark =
        ReadFrameMark(photograph.View(), FitPicture(window, film.displayWidth, film.displayHeight));
    return mark ? std::optional(*mark - film.firstNumber) : std::nullopt;
}

bool RoadTest::WaitForFrame(int number) const {
    return PumpUntil(limits::kPicture, [&] { return FrameOnScreen() == number; });
}

int RoadTest::FrameAt(Seconds position) const {
    // A frame stands from its own time on; times are rounded to 100 ns and, in some containers, to
    // milliseconds.
    constexpr Seconds kRounding = 0.0011;
    return static_cast<int>(std::floor((position + kRounding - film.videoStart) * film.fps));
}

std::vector<std::wstring> RoadTest::TracedLines() const {
    const std::lock_guard lock(linesMutex);
    return lines;
}

std::ptrdiff_t RoadTest::CountTraced(std::wstring_view part) const {
    return std::ranges::count_if(
        TracedLines(), [part](const std::wstring& line) { return line.find(part) != std::wstring::npos; });
}

bool RoadTest::Traced(const std::wstring& line) const {
    return std::ranges::count(TracedLines(), line) > 0;
}

} // namespace brindlecast::testing

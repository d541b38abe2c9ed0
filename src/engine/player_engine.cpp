#include "engine/player_engine.h"

#include "app/settings.h"
#include "base/trace.h"
#include "engine/hardware_choice.h"
#include "engine/subtitle_grabber.h"
#include "filters/include/lav_video.h"
#include "subtitles/subtitle_manager.h"

#include <dshow.h>
#include <oleauto.h>

#include <utility>

namespace brindlecast {

namespace {

// Before a failed build is repeated, in milliseconds.
constexpr DWORD kBuildRetryWait = 100;

} // namespace

PlayerEngine::PlayerEngine(SettingsStore& theSettings) : settings(theSettings) {}

PlayerEngine::~PlayerEngine() {
    Shutdown();
}

bool PlayerEngine::OpenFile(std::wstring path) {
    CloseGraph();
    hwAccel = ReadSetting(settings, settings::kHwAccel);
    Trace(L"[Brindlecast] OpenFile with HWAccel=%d\n", static_cast<int>(hwAccel));
    if (!BuildGraph(path)) {
        CloseGraph();
        Sleep(kBuildRetryWait);
        if (!BuildGraph(path)) {
            CloseGraph();
            return false;
        }
    }
    if (!hasVideo && hwAccel != kHardwareNone && ReadSetting(settings, settings::kHwAccelFallback) != 0) {
        CloseGraph();
        hwAccel = kHardwareNone;
        if (!BuildGraph(path)) {
            CloseGraph();
            return false;
        }
    }
    currentFile = std::move(path);
    state = kEngineStopped;
    if (!currentFile.empty()) {
        FindSubtitlesOfCurrentFile();
    }
    return true;
}

bool PlayerEngine::Play() {
    if (control == nullptr) {
        return false;
    }
    OAFilterState current = State_Stopped;
    control->GetState(0, &current);
    Trace(L"[Brindlecast] Play() - Current state: %d\n", current);
    HRESULT result = control->Run();
    Trace(L"[Brindlecast] Play() - Run() returned: 0x%08X\n", result);
    const bool anotherMethodMayHelp = hwAccel != kHardwareNone && hwAccel != kHardwareD3D11;
    if (result == E_OUTOFMEMORY && anotherMethodMayHelp && !currentFile.empty()) {
        result = RunAgainWithD3D11(result);
    }
    if (FAILED(result)) {
        return false;
    }
    state = kEngineRunning;
    TraceActiveDecoder();
    return true;
}

HRESULT PlayerEngine::RunAgainWithD3D11(HRESULT firstResult) {
    // CloseGraph empties the field.
    const std::wstring path = currentFile;
    CloseGraph();
    hwAccel = kHardwareD3D11;
    if (!BuildGraph(path)) {
        CloseGraph();
        return firstResult;
    }
    currentFile = path;
    state = kEngineStopped;
    if (control == nullptr) {
        return firstResult;
    }
    const HRESULT result = control->Run();
    Trace(L"[Brindlecast] Play() - Retry with D3D11 returned: 0x%08X\n", result);
    return result;
}

void PlayerEngine::TraceActiveDecoder() const {
    const auto status = QueryFor<ILAVVideoStatus>(lavVideo.Get());
    if (status == nullptr) {
        return;
    }
    const wchar_t* name = status->GetActiveDecoderName();
    Trace(L"[Brindlecast] Active Decoder: %s\n", name != nullptr ? name : L"(null/software)");
    BSTR device = nullptr;
    if (SUCCEEDED(status->GetHWAccelActiveDevice(&device)) && device != nullptr) {
        Trace(L"[Brindlecast] HW Accel Device: %s\n", static_cast<const wchar_t*>(device));
        SysFreeString(device);
    }
}

void PlayerEngine::CloseGraph() {
    if (control != nullptr && SUCCEEDED(control->Stop())) {
        state = kEngineStopped;
        Seek(0.0);
    }
    ClearMarks();
    if (subtitleManager != nullptr) {
        subtitleManager->Unload();
    }
    embeddedSubtitleTrack = -1;
    currentFile.clear();
    if (videoWindowControl != nullptr) {
        videoWindowControl->put_Visible(OAFALSE);
        videoWindowControl->put_Owner(0);
    }
    keyFrames.clear();
    // The filters before the interfaces of the graph, the graph last.
    keyFrameInfo.Reset();
    audioSwitcherControl.Reset();
    audioSwitcher.Reset();
    lavAudio.Reset();
    lavVideo.Reset();
    splitter.Reset();
    subtitleCallback.Reset();
    rendererConfig.Reset();
    videoWindowControl.Reset();
    basicVideo.Reset();
    basicAudio.Reset();
    events.Reset();
    seeking.Reset();
    control.Reset();
    videoRenderer.Reset();
    graph.Reset();
    state = kEngineStopped;
}

void PlayerEngine::Shutdown() {
    CloseGraph();
    subtitleManager.reset();
    videoHost = nullptr;
    // Forgotten, not freed: code of theirs may still be on some thread's stack while the process ends.
    splitterModule = nullptr;
    videoModule = nullptr;
    audioModule = nullptr;
    rendererModule = nullptr;
    switcherModule = nullptr;
}

} // namespace brindlecast

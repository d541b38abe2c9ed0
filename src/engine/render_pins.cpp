#include "base/trace.h"
#include "engine/graph_pins.h"
#include "engine/pin_kind.h"
#include "engine/player_engine.h"
#include "engine/stream_select.h"

#include <uuids.h>

namespace brindlecast {

namespace {

// A filter may hold a resource for a moment after its first refusal; in milliseconds.
constexpr DWORD kRenderRetryWait = 50;

// True when the pin is connected afterwards, or was before.
bool RenderPin(IGraphBuilder* graph, IPin* pin, const std::wstring& name) {
    if (!IsUnconnected(pin)) {
        Trace(L"[Brindlecast] Pin already connected: %s\n", name);
        return true;
    }
    Trace(L"[Brindlecast] Rendering pin: %s\n", name);
    HRESULT result = graph->Render(pin);
    if (FAILED(result)) {
        Sleep(kRenderRetryWait);
        result = graph->Render(pin);
    }
    if (FAILED(result)) {
        Trace(L"[Brindlecast] Failed to render pin '%s': 0x%08X\n", name, result);
        return false;
    }
    Trace(L"[Brindlecast] Successfully rendered pin: %s\n", name);
    return true;
}

} // namespace

void PlayerEngine::RenderSplitterPins(bool& videoConnected, bool& audioConnected) {
    std::vector<ComPtr<IPin>> pins;
    if (FAILED(ListPins(splitter.Get(), PINDIR_OUTPUT, pins))) {
        return;
    }
    for (const ComPtr<IPin>& pin : pins) {
        const std::wstring name = PinName(pin.Get());
        const bool audio = IsAudioPinName(name);
        if ((audio && audioConnected) || !RenderPin(graph.Get(), pin.Get(), name)) {
            continue;
        }
        videoConnected = videoConnected || IsVideoPinName(name);
        audioConnected = audioConnected || audio;
    }
}

bool PlayerEngine::LeaveOutAudio(IBaseFilter* audioRenderer) {
    if (lavAudio != nullptr) {
        graph->RemoveFilter(lavAudio.Get());
        lavAudio.Reset();
    }
    if (audioRenderer != nullptr) {
        graph->RemoveFilter(audioRenderer);
    }
    DisableAudioStreams();
    return AllSplitterPinsConnected();
}

void PlayerEngine::DisableAudioStreams() {
    const StreamWalk walk(splitter.Get());
    for (DWORD index = 0; index < walk.Count(); ++index) {
        const StreamInfo stream = walk.Info(index);
        if (!stream.known || stream.majorType != MEDIATYPE_Audio ||
            (stream.flags & AMSTREAMSELECTINFO_ENABLED) == 0) {
            continue;
        }
        const HRESULT result = walk.Enable(index, 0);
        Trace(L"[Brindlecast] Disabled audio stream %d: %s (hr=0x%08X)\n", index,
              stream.name ? stream.name->c_str() : nullptr, result);
    }
}

bool PlayerEngine::AllSplitterPinsConnected() {
    std::vector<ComPtr<IPin>> pins;
    if (FAILED(ListPins(splitter.Get(), PINDIR_OUTPUT, pins))) {
        return true;
    }
    bool allConnected = true;
    for (const ComPtr<IPin>& pin : pins) {
        if (IsUnconnected(pin.Get())) {
            Trace(L"[Brindlecast] Still unconnected pin: %s\n", PinName(pin.Get()));
            allConnected = false;
        }
    }
    return allConnected;
}

} // namespace brindlecast

#include "base/trace.h"
#include "engine/graph_pins.h"
#include "engine/pin_kind.h"
#include "engine/player_engine.h"

namespace brindlecast {

bool PlayerEngine::ConnectAudioChain(IBaseFilter* audioRenderer) {
    if (splitter == nullptr || lavAudio == nullptr || audioRenderer == nullptr) {
        return false;
    }
    if (!ConnectSplitterToDecoder()) {
        return false;
    }
    if (audioSwitcher != nullptr && ConnectThroughSwitcher(audioRenderer)) {
        return true;
    }
    const ComPtr<IPin> decoderOutput = FindUnconnectedPin(lavAudio.Get(), PINDIR_OUTPUT);
    const ComPtr<IPin> rendererInput = FindUnconnectedPin(audioRenderer, PINDIR_INPUT);
    return decoderOutput != nullptr && rendererInput != nullptr &&
           SUCCEEDED(graph->Connect(decoderOutput.Get(), rendererInput.Get()));
}

bool PlayerEngine::ConnectSplitterToDecoder() {
    std::vector<ComPtr<IPin>> pins;
    if (FAILED(ListPins(splitter.Get(), PINDIR_OUTPUT, pins))) {
        // The rest of the chain is tried all the same.
        return true;
    }
    for (const ComPtr<IPin>& pin : pins) {
        if (!IsAudioPinName(PinName(pin.Get())) || !IsUnconnected(pin.Get())) {
            continue;
        }
        const ComPtr<IPin> decoderInput = FindUnconnectedPin(lavAudio.Get(), PINDIR_INPUT);
        if (decoderInput == nullptr) {
            continue;
        }
        const HRESULT result = graph->Connect(pin.Get(), decoderInput.Get());
        if (SUCCEEDED(result)) {
            return true;
        }
        Trace(L"[Brindlecast] Failed to connect Splitter → LAV Audio: 0x%08X\n", result);
    }
    return false;
}

bool PlayerEngine::ConnectThroughSwitcher(IBaseFilter* audioRenderer) {
    const ComPtr<IPin> decoderOutput = FindUnconnectedPin(lavAudio.Get(), PINDIR_OUTPUT);
    const ComPtr<IPin> switcherInput = FindUnconnectedPin(audioSwitcher.Get(), PINDIR_INPUT);
    if (decoderOutput == nullptr || switcherInput == nullptr) {
        return false;
    }
    HRESULT result = graph->Connect(decoderOutput.Get(), switcherInput.Get());
    if (FAILED(result)) {
        Trace(L"[Brindlecast] Failed to connect LAV Audio → AudioSwitcher: 0x%08X\n", result);
        return false;
    }
    const ComPtr<IPin> switcherOutput = FindUnconnectedPin(audioSwitcher.Get(), PINDIR_OUTPUT);
    const ComPtr<IPin> rendererInput = FindUnconnectedPin(audioRenderer, PINDIR_INPUT);
    if (switcherOutput == nullptr || rendererInput == nullptr) {
        return false;
    }
    result = graph->Connect(switcherOutput.Get(), rendererInput.Get());
    if (SUCCEEDED(result)) {
        return true;
    }
    Trace(L"[Brindlecast] Failed to connect AudioSwitcher → Renderer: 0x%08X\n", result);
    // Leaving the graph frees the decoder's output for the direct way.
    graph->RemoveFilter(audioSwitcher.Get());
    audioSwitcher.Reset();
    audioSwitcherControl.Reset();
    return false;
}

} // namespace brindlecast

#include "base/trace.h"
#include "engine/executable_directory.h"
#include "engine/graph_pins.h"
#include "engine/graph_seeking.h"
#include "engine/hardware_choice.h"
#include "engine/player_engine.h"
#include "filters/include/lav_audio.h"
#include "filters/include/lav_video.h"

#include <amvideo.h>
#include <dvdmedia.h>
#include <uuids.h>

#include <memory>
#include <new>
#include <optional>

namespace brindlecast {

namespace {

// How long priming waits for the graph to reach the paused state, in milliseconds.
constexpr long kPrimingWait = 100;
// More than any pin offers: an enumerator that goes on behind it has no end.
constexpr int kMostTypes = 1024;

struct VideoFormat {
    REFERENCE_TIME frameDuration;
    LONG width;
    LONG height;
};

template <class Header>
std::optional<VideoFormat> ReadHeader(const AM_MEDIA_TYPE& type) {
    if (type.pbFormat == nullptr || type.cbFormat < sizeof(Header)) {
        return std::nullopt;
    }
    const auto& header = *reinterpret_cast<const Header*>(type.pbFormat);
    return VideoFormat{header.AvgTimePerFrame, header.bmiHeader.biWidth, header.bmiHeader.biHeight};
}

std::optional<VideoFormat> ReadVideoFormat(const AM_MEDIA_TYPE& type) {
    if (type.formattype == FORMAT_VideoInfo2) {
        return ReadHeader<VIDEOINFOHEADER2>(type);
    }
    if (type.formattype == FORMAT_VideoInfo) {
        return ReadHeader<VIDEOINFOHEADER>(type);
    }
    return std::nullopt;
}

// The first type of major type video that the pin offers; the others are not looked at.
std::unique_ptr<AM_MEDIA_TYPE, MediaTypeDeleter> FirstVideoType(IPin* pin) {
    ComPtr<IEnumMediaTypes> types;
    if (FAILED(Obtain(types, [pin](IEnumMediaTypes** given) { return pin->EnumMediaTypes(given); }))) {
        return nullptr;
    }
    for (int i = 0; i < kMostTypes; ++i) {
        AM_MEDIA_TYPE* type = nullptr;
        if (types->Next(1, &type, nullptr) != S_OK || type == nullptr) {
            break;
        }
        std::unique_ptr<AM_MEDIA_TYPE, MediaTypeDeleter> owned(type);
        if (owned->majortype == MEDIATYPE_Video) {
            return owned;
        }
    }
    return nullptr;
}

// Keeps a field that already refers to the same object; a failed query leaves it null.
template <class Interface>
void FetchFrom(IUnknown* object, ComPtr<Interface>& field) {
    const auto fetched = QueryFor<Interface>(object);
    // By address: the compiler's ComPtr compares only whether both are set.
    if (fetched.Get() != field.Get()) {
        field = fetched;
    }
}

} // namespace

bool PlayerEngine::BuildGraph(const std::wstring& path) {
    try {
        return AssembleGraph(path);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool PlayerEngine::AssembleGraph(const std::wstring& path) {
    const std::wstring directory = ExecutableDirectory();
    if (FAILED(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_ALL, IID_PPV_ARGS(&graph)))) {
        return false;
    }
    if (!AddVideoRenderer(directory) || !AddSplitter(directory, path)) {
        return false;
    }
    // Before the video decoder is configured: the size of the picture may force the method.
    ProbeVideoFormat();
    AddDecoders(directory);
    AddAudioSwitcher(directory);
    const ComPtr<IBaseFilter> audioRenderer = AddAudioRenderer();
    PrimeGraph();

    bool videoConnected = false;
    bool audioConnected =
        audioRenderer != nullptr && lavAudio != nullptr && ConnectAudioChain(audioRenderer.Get());
    RenderSplitterPins(videoConnected, audioConnected);
    Trace(L"[Brindlecast] Connection status - Video: %d, Audio: %d\n", videoConnected, audioConnected);
    hasVideo = videoConnected;
    if (!audioConnected && !LeaveOutAudio(audioRenderer.Get())) {
        return false;
    }
    FetchGraphInterfaces();
    AttachVideoHost();
    return true;
}

bool PlayerEngine::AddVideoRenderer(const std::wstring& directory) {
    if (FAILED(LoadFilterFromModule(directory + L"\\MpcVideoRenderer64.ax", kClsidMpcVideoRenderer,
                                    videoRenderer.ReleaseAndGetAddressOf())) ||
        videoRenderer == nullptr) {
        return false;
    }
    if (SUCCEEDED(graph->AddFilter(videoRenderer.Get(), L"MPC Video Renderer"))) {
        ConfigureRenderer();
    }
    return true;
}

bool PlayerEngine::AddSplitter(const std::wstring& directory, const std::wstring& path) {
    if (FAILED(LoadFilterFromModule(directory + L"\\LAVSplitter.ax", kClsidLavSplitterSource,
                                    splitter.ReleaseAndGetAddressOf())) ||
        splitter == nullptr) {
        return false;
    }
    ConfigureLAVSplitter(splitter.Get());
    // A splitter that the graph did not take may still open the file; what it can't connect shows later.
    graph->AddFilter(splitter.Get(), L"LAV Splitter Source");
    const auto source = QueryFor<IFileSourceFilter>(splitter.Get());
    if (source == nullptr) {
        return false;
    }
    const HRESULT result = source->Load(path.c_str(), nullptr);
    if (FAILED(result)) {
        Trace(L"[Brindlecast] Failed to load file: 0x%08X\n", result);
        return false;
    }
    keyFrameInfo = QueryFor<IKeyFrameInfo>(splitter.Get());
    if (keyFrameInfo != nullptr) {
        LoadKeyFrames();
    }
    return true;
}

void PlayerEngine::ProbeVideoFormat() {
    std::vector<ComPtr<IPin>> pins;
    if (FAILED(ListPins(splitter.Get(), PINDIR_OUTPUT, pins))) {
        return;
    }
    for (const ComPtr<IPin>& pin : pins) {
        const auto type = FirstVideoType(pin.Get());
        const auto format = type != nullptr ? ReadVideoFormat(*type) : std::nullopt;
        if (!format) {
            continue;
        }
        if (format->frameDuration > 0) {
            frameRate = static_cast<double>(kUnitsPerSecond) / static_cast<double>(format->frameDuration);
        }
        if (format->width >= 1 && format->height >= 1) {
            Trace(L"[Brindlecast] Detected video resolution: %dx%d\n", format->width, format->height);
            if (NeedsD3D11(format->width, format->height)) {
                hwAccel = kHardwareD3D11;
            }
        }
    }
}

void PlayerEngine::AddDecoders(const std::wstring& directory) {
    if (SUCCEEDED(LoadFilterFromModule(directory + L"\\LAVVideo.ax", kClsidLavVideo,
                                       lavVideo.ReleaseAndGetAddressOf())) &&
        lavVideo != nullptr) {
        ConfigureLAVVideo(lavVideo.Get());
        graph->AddFilter(lavVideo.Get(), L"LAV Video Decoder");
    }
    if (SUCCEEDED(LoadFilterFromModule(directory + L"\\LAVAudio.ax", kClsidLavAudio,
                                       lavAudio.ReleaseAndGetAddressOf())) &&
        lavAudio != nullptr) {
        ConfigureLAVAudio(lavAudio.Get());
        graph->AddFilter(lavAudio.Get(), L"LAV Audio Decoder");
    }
}

void PlayerEngine::AddAudioSwitcher(const std::wstring& directory) {
    if (FAILED(LoadFilterFromModule(directory + L"\\AudioSwitcher.ax", kClsidAudioSwitcher,
                                    audioSwitcher.ReleaseAndGetAddressOf())) ||
        audioSwitcher == nullptr) {
        return;
    }
    graph->AddFilter(audioSwitcher.Get(), L"AudioSwitcher");
    audioSwitcherControl = QueryFor<IAudioSwitcherFilter>(audioSwitcher.Get());
    if (audioSwitcherControl != nullptr) {
        ApplyNormalization();
    }
}

ComPtr<IBaseFilter> PlayerEngine::AddAudioRenderer() {
    ComPtr<IBaseFilter> renderer;
    if (SUCCEEDED(CoCreateInstance(CLSID_DSoundRender, nullptr, CLSCTX_ALL, IID_PPV_ARGS(&renderer)))) {
        graph->AddFilter(renderer.Get(), L"DirectSound Renderer");
        return renderer;
    }
    if (SUCCEEDED(CoCreateInstance(CLSID_AudioRender, nullptr, CLSCTX_ALL,
                                   IID_PPV_ARGS(renderer.ReleaseAndGetAddressOf())))) {
        graph->AddFilter(renderer.Get(), L"Default Audio Renderer");
        return renderer;
    }
    return nullptr;
}

void PlayerEngine::PrimeGraph() {
    const auto priming = QueryFor<IMediaControl>(graph.Get());
    if (priming == nullptr) {
        return;
    }
    // No pin is connected yet: the graph chooses its clock, the filters have nothing to do, and whether it
    // succeeds does not matter.
    priming->Pause();
    OAFilterState reached = State_Stopped;
    priming->GetState(kPrimingWait, &reached);
    priming->Stop();
}

void PlayerEngine::FetchGraphInterfaces() {
    FetchFrom(graph.Get(), control);
    FetchFrom(graph.Get(), events);
    const ComPtr<IMediaSeeking> graphSeeking =
        GetGraphSeeking(graph.Get(), splitter.Get(), videoRenderer.Get());
    if (graphSeeking.Get() != seeking.Get()) {
        seeking = graphSeeking;
    }
    FetchFrom(graph.Get(), basicAudio);
    if (basicAudio != nullptr) {
        SetVolume(volume);
    }
    FetchFrom(graph.Get(), videoWindowControl);
    FetchFrom(graph.Get(), basicVideo);
}

void PlayerEngine::AttachVideoHost() {
    if (videoWindowControl == nullptr || videoHost == nullptr || IsWindow(videoHost) == FALSE) {
        return;
    }
    const auto host = reinterpret_cast<OAHWND>(videoHost);
    videoWindowControl->put_Owner(host);
    videoWindowControl->put_MessageDrain(host);
    RECT client{};
    GetClientRect(videoHost, &client);
    SetRenderRect(0, 0, client.right - client.left, client.bottom - client.top);
}

} // namespace brindlecast

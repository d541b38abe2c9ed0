#include "app/settings.h"
#include "engine/embedded_subtitle_rules.h"
#include "engine/executable_directory.h"
#include "engine/graph_pins.h"
#include "engine/player_engine.h"
#include "engine/stream_select.h"
#include "engine/subtitle_grabber.h"
#include "engine/tool_process.h"
#include "subtitles/subtitle_manager.h"

#include <array>
#include <memory>
#include <optional>

namespace brindlecast {

namespace {

// Value of the setting EmbeddedSubtitleMethod; with any other the tool is asked alone.
constexpr std::uint32_t kGrabberFirst = 1;
// How long taking a track out may take; the player stands still meanwhile. Milliseconds.
constexpr DWORD kExtractionLimit = 30000;
// More than any pin offers: an enumerator that goes on behind it has no end.
constexpr int kMostTypes = 1024;
// The grabber's callback gets whole samples.
constexpr long kSampleCallback = 0;

struct SubtitleStream {
    DWORD index; // among all streams
    std::wstring name;
};

std::optional<SubtitleStream> FindSubtitleStream(const StreamWalk& walk, int ordinal) {
    const int index = walk.IndexOf(StreamKind::Subtitle, static_cast<unsigned>(ordinal));
    if (index < 0) {
        return std::nullopt;
    }
    const StreamInfo stream = walk.Info(static_cast<DWORD>(index));
    if (!stream.known) {
        return std::nullopt;
    }
    return SubtitleStream{static_cast<DWORD>(index), stream.name.value_or(std::wstring())};
}

// Empty when the system can't name it; else with a separator at its end.
std::wstring TemporaryFolder() {
    std::array<wchar_t, MAX_PATH + 1> path{};
    const DWORD length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    return length < path.size() ? std::wstring(path.data(), length) : std::wstring();
}

// False when the file is not there; an empty one is taken away.
bool HoldsAnything(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA facts{};
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &facts) == FALSE) {
        return false;
    }
    if (facts.nFileSizeHigh == 0 && facts.nFileSizeLow == 0) {
        DeleteFileW(path.c_str());
        return false;
    }
    return true;
}

bool OffersSubtitles(IPin* pin) {
    ComPtr<IEnumMediaTypes> types;
    if (FAILED(Obtain(types, [pin](IEnumMediaTypes** given) { return pin->EnumMediaTypes(given); }))) {
        return false;
    }
    for (int i = 0; i < kMostTypes; ++i) {
        AM_MEDIA_TYPE* type = nullptr;
        if (types->Next(1, &type, nullptr) != S_OK || type == nullptr) {
            break;
        }
        const std::unique_ptr<AM_MEDIA_TYPE, MediaTypeDeleter> owned(type);
        if (MatchesKind(type->majortype, StreamKind::Subtitle)) {
            return true;
        }
    }
    return false;
}

ComPtr<IPin> FindFreeSubtitlePin(IBaseFilter* splitter) {
    std::vector<ComPtr<IPin>> pins;
    if (FAILED(ListPins(splitter, PINDIR_OUTPUT, pins))) {
        return nullptr;
    }
    for (const ComPtr<IPin>& pin : pins) {
        if (IsUnconnected(pin.Get()) && OffersSubtitles(pin.Get())) {
            return pin;
        }
    }
    return nullptr;
}

// A filter of the system, in the graph; null when it can't be made or the graph does not take it.
ComPtr<IBaseFilter> AddSystemFilter(IGraphBuilder* graph, const CLSID& clsid, const wchar_t* name) {
    ComPtr<IBaseFilter> filter;
    if (FAILED(Obtain(filter,
                      [&clsid](IBaseFilter** given) {
                          return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(given));
                      })) ||
        FAILED(graph->AddFilter(filter.Get(), name))) {
        return nullptr;
    }
    return filter;
}

bool IsInGraph(IBaseFilter* filter, IFilterGraph* graph) {
    FILTER_INFO info{};
    if (FAILED(filter->QueryFilterInfo(&info))) {
        return false;
    }
    ComPtr<IFilterGraph> owner;
    *owner.ReleaseAndGetAddressOf() = info.pGraph;
    return owner != nullptr && QueryFor<IUnknown>(owner.Get()).Get() == QueryFor<IUnknown>(graph).Get();
}

} // namespace

bool PlayerEngine::LoadEmbeddedSubtitle(int ordinal) {
    if (ordinal < 0 || ordinal >= GetEmbeddedSubtitleCount()) {
        return false;
    }
    const bool grabberFirst = ReadSetting(settings, settings::kEmbeddedSubtitleMethod) == kGrabberFirst;
    const bool grabbed = grabberFirst && AttachSubtitleGrabber(ordinal);
    if (!grabbed && !ExtractSubtitleWithFfmpeg(ordinal)) {
        return false;
    }
    embeddedSubtitleTrack = ordinal;
    SetSubtitleEnabled(true);
    return true;
}

bool PlayerEngine::ExtractSubtitleWithFfmpeg(int ordinal) {
    if (splitter == nullptr || currentFile.empty()) {
        return false;
    }
    const auto stream = FindSubtitleStream(StreamWalk(splitter.Get()), ordinal);
    if (!stream || IsPictureTrackForTool(stream->name)) {
        return false;
    }
    const std::wstring folder = TemporaryFolder();
    const std::wstring tool = ExecutableDirectory() + L"\\ffmpeg.exe";
    if (folder.empty() || GetFileAttributesW(tool.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return false;
    }
    const std::wstring target = folder + ExtractedFileName(stream->name);
    DeleteFileW(target.c_str());
    return RunTool(tool, ExtractionCommandLine(tool, currentFile, ordinal, target), kExtractionLimit) &&
           HoldsAnything(target) && LoadSubtitle(target);
}

bool PlayerEngine::AttachSubtitleGrabber(int ordinal) {
    if (graph == nullptr || splitter == nullptr) {
        return false;
    }
    const StreamWalk walk(splitter.Get());
    const auto stream = FindSubtitleStream(walk, ordinal);
    if (!stream || IsPictureTrackForGrabber(stream->name)) {
        return false;
    }
    // Whether it was enabled shows by its pin.
    static_cast<void>(walk.Enable(stream->index, AMSTREAMSELECTENABLE_ENABLE));
    const ComPtr<IPin> source = FindFreeSubtitlePin(splitter.Get());
    if (source == nullptr || !PrepareSubtitleGrabber(IsAssTrack(stream->name)) ||
        !ConnectSubtitleGrabber(source.Get())) {
        return false;
    }
    EnsureSubtitleManager();
    if (subtitleCallback != nullptr) {
        subtitleCallback->manager = subtitleManager.get();
    }
    return true;
}

bool PlayerEngine::PrepareSubtitleGrabber(bool isAss) {
    if (subtitleGrabber == nullptr) {
        subtitleGrabber = AddSystemFilter(graph.Get(), kClsidSampleGrabber, L"Subtitle Grabber");
    }
    const auto grabber = QueryFor<ISampleGrabber>(subtitleGrabber.Get());
    if (grabber == nullptr) {
        return false;
    }
    AM_MEDIA_TYPE type{};
    type.majortype = kMajorTypeSubtitle;
    grabber->SetMediaType(&type);
    if (subtitleGrabberCallback == nullptr) {
        *subtitleGrabberCallback.ReleaseAndGetAddressOf() = new CSubtitleGrabberCallback;
    }
    subtitleGrabberCallback->Clear();
    {
        const std::lock_guard guard(subtitleGrabberCallback->lock);
        subtitleGrabberCallback->isAss = isAss;
        if (subtitleManager != nullptr && subtitleManager->HasProvider()) {
            subtitleGrabberCallback->providerTarget = subtitleManager->Provider();
            subtitleGrabberCallback->providerLinked = true;
        }
    }
    grabber->SetCallback(subtitleGrabberCallback.Get(), kSampleCallback);
    return true;
}

bool PlayerEngine::ConnectSubtitleGrabber(IPin* source) {
    const ComPtr<IBaseFilter> sink = AddSystemFilter(graph.Get(), kClsidNullRenderer, L"Subtitle Null");
    // The grabber of an earlier file is not put into this file's graph, and the tool does the work. Windows
    // refuses to connect a filter from outside; Wine would connect it, and never run it.
    if (!IsInGraph(subtitleGrabber.Get(), graph.Get())) {
        return false;
    }
    const ComPtr<IPin> input = FindUnconnectedPin(subtitleGrabber.Get(), PINDIR_INPUT);
    if (input == nullptr || FAILED(graph->Connect(source, input.Get()))) {
        return false;
    }
    const ComPtr<IPin> output = FindUnconnectedPin(subtitleGrabber.Get(), PINDIR_OUTPUT);
    const ComPtr<IPin> end = FindUnconnectedPin(sink.Get(), PINDIR_INPUT);
    if (output != nullptr && end != nullptr) {
        // Samples are grabbed with the output left open too.
        graph->Connect(output.Get(), end.Get());
    }
    return true;
}

} // namespace brindlecast

#include "filters/splitter/splitter_filter.h"

#include "filters/base/stream_formats.h"
#include "filters/core/picture_geometry.h"
#include "filters/splitter/splitter_text.h"

#include <algorithm>
#include <array>
#include <cstring>

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/error.h>
}

namespace brindlecast {

SplitterFilter::SplitterFilter()
    : BaseFilter(kClsidLavSplitterSource, AM_FILTER_MISC_FLAGS_IS_SOURCE),
      SourceSeeking(static_cast<SeekTarget&>(*this)) {}

SplitterFilter::~SplitterFilter() {
    // A graph stops its filters before it lets them go; this is for hosts that do not.
    if (streaming) {
        StopStreaming(false);
    }
}

void* SplitterFilter::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IFileSourceFilter) {
        return static_cast<IFileSourceFilter*>(this);
    }
    if (iid == IID_IAMStreamSelect) {
        return static_cast<IAMStreamSelect*>(this);
    }
    if (iid == IID_IMediaSeeking) {
        return static_cast<IMediaSeeking*>(this);
    }
    if (iid == __uuidof(IKeyFrameInfo)) {
        return static_cast<IKeyFrameInfo*>(this);
    }
    if (iid == kIidPictureOrientation) {
        return static_cast<IPictureOrientation*>(this);
    }
    if (iid == __uuidof(ILAVFSettings)) {
        return static_cast<ILAVFSettings*>(this);
    }
    return BaseFilter::FindInterface(iid);
}

int SplitterFilter::GetPictureRotation() {
    const int stream = EnabledStream(StreamKind::Video);
    if (stream < 0) {
        return 0;
    }
    for (const auto& [type, bytes] : StreamAt(stream).sideData) {
        std::array<std::int32_t, 9> matrix{};
        if (type == AV_PKT_DATA_DISPLAYMATRIX && bytes.size() >= sizeof(matrix)) {
            std::memcpy(matrix.data(), bytes.data(), sizeof(matrix));
            return RotationOfDisplayMatrix(matrix);
        }
    }
    return 0;
}

STDMETHODIMP SplitterFilter::Load(LPCOLESTR path, const AM_MEDIA_TYPE*) {
    return Guarded([&]() -> HRESULT {
        if (path == nullptr) {
            return E_POINTER;
        }
        const std::lock_guard lock(StateLock());
        if (file) {
            return E_UNEXPECTED; // one file in the life of a source: its pins stand for it
        }
        return OpenFile(path);
    });
}

HRESULT SplitterFilter::OpenFile(const std::wstring& path) {
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return HRESULT_FROM_WIN32(GetLastError());
    }
    int error = 0;
    std::unique_ptr<DemuxFile> opened = DemuxFile::Open(Utf8(path), error);
    if (!opened) {
        return error == AVERROR(ENOMEM) ? E_OUTOFMEMORY : VFW_E_UNSUPPORTED_STREAM;
    }
    streams = opened->Streams();
    for (std::size_t i = 0; i < streams.size(); ++i) {
        streams[i].decodable = streams[i].decodable && !TypesOf(static_cast<int>(i)).empty();
    }
    const StreamChoice choice = ChooseStreams(streams, Preferences());
    if (choice.video < 0 && choice.audio < 0) {
        return VFW_E_UNSUPPORTED_STREAM;
    }
    opened->LoadKeyframes(choice.video);
    std::vector<StreamKind> kinds;
    for (const DemuxStream& stream : streams) {
        kinds.push_back(stream.kind);
    }
    queues.Configure(std::move(kinds));
    queues.SetLimits(Limits());
    file = std::move(opened);
    currentPath = path;
    duration = file->Duration();
    if (choice.video >= 0) {
        CreatePin(StreamKind::Video, choice.video);
    }
    if (choice.audio >= 0) {
        CreatePin(StreamKind::Audio, choice.audio);
    }
    if (choice.subtitle >= 0) {
        CreatePin(StreamKind::Subtitle, choice.subtitle);
    }
    return S_OK;
}

void SplitterFilter::CreatePin(StreamKind kind, int stream) {
    auto pin = std::make_unique<SplitterPin>(*this, kind, stream);
    pins[static_cast<std::size_t>(kind)] = pin.get();
    AddPin(std::move(pin));
}

std::vector<MediaType> SplitterFilter::TypesOf(int stream) const {
    const DemuxStream& described = StreamAt(stream);
    return MediaTypesFor(*described.parameters,
                         {described.frameDuration, described.aspectX, described.aspectY});
}

STDMETHODIMP SplitterFilter::GetCurFile(LPOLESTR* path, AM_MEDIA_TYPE* type) {
    const std::lock_guard lock(StateLock());
    if (type != nullptr) {
        *type = {};
        type->majortype = MEDIATYPE_Stream;
    }
    if (path == nullptr) {
        return E_POINTER;
    }
    *path = nullptr;
    return file ? TaskMemString(currentPath, path) : E_FAIL;
}

STDMETHODIMP SplitterFilter::Count(DWORD* count) {
    if (count == nullptr) {
        return E_POINTER;
    }
    const std::lock_guard lock(StateLock());
    *count = static_cast<DWORD>(streams.size());
    return S_OK;
}

int SplitterFilter::EnabledStream(StreamKind kind) const {
    const SplitterPin* pin = PinOf(kind);
    return pin != nullptr ? pin->Stream() : -1;
}

STDMETHODIMP SplitterFilter::Info(LONG index, AM_MEDIA_TYPE** type, DWORD* flags, LCID* language,
                                  DWORD* group, WCHAR** name, IUnknown** object, IUnknown** unknown) {
    return Guarded([&]() -> HRESULT {
        const std::lock_guard lock(StateLock());
        if (index < 0 || static_cast<std::size_t>(index) >= streams.size()) {
            return S_FALSE; // documented: index out of range
        }
        const DemuxStream& stream = StreamAt(index);
        if (flags != nullptr) {
            *flags = EnabledStream(stream.kind) == index
                         ? AMSTREAMSELECTINFO_ENABLED | AMSTREAMSELECTINFO_EXCLUSIVE
                         : 0;
        }
        if (language != nullptr) {
            *language = 0;
        }
        if (group != nullptr) {
            *group = static_cast<DWORD>(stream.kind);
        }
        if (object != nullptr) {
            *object = nullptr;
        }
        if (unknown != nullptr) {
            *unknown = nullptr;
        }
        if (name != nullptr) {
            const HRESULT result = TaskMemString(Wide(DisplayName(stream)), name);
            if (FAILED(result)) {
                return result;
            }
        }
        if (type == nullptr) {
            return S_OK;
        }
        std::vector<MediaType> types = TypesOf(index);
        if (types.empty()) { // a stream that no pin can carry still tells its kind
            const GUID majors[] = {MEDIATYPE_Video, MEDIATYPE_Audio, kMediaTypeSubtitle};
            types.emplace_back(majors[static_cast<std::size_t>(stream.kind)], GUID_NULL);
        }
        *type = types.front().NewTaskMemCopy();
        if (*type != nullptr) {
            return S_OK;
        }
        if (name != nullptr) {
            CoTaskMemFree(*name);
            *name = nullptr;
        }
        return E_OUTOFMEMORY;
    });
}

STDMETHODIMP SplitterFilter::Enable(LONG index, DWORD flags) {
    return Guarded([&]() -> HRESULT {
        const std::lock_guard lock(StateLock());
        if (index < 0 || static_cast<std::size_t>(index) >= streams.size()) {
            return E_INVALIDARG;
        }
        if (flags != 0 && flags != AMSTREAMSELECTENABLE_ENABLE) {
            return E_NOTIMPL; // several streams of one kind at once
        }
        const DemuxStream& stream = StreamAt(index);
        SplitterPin* pin = PinOf(stream.kind);
        if (flags == 0) {
            return pin != nullptr && pin->Stream() == index ? SwitchStream(*pin, -1) : S_OK;
        }
        if (!stream.decodable) {
            return VFW_E_UNSUPPORTED_STREAM;
        }
        if (pin == nullptr) {
            CreatePin(stream.kind, index);
            return S_OK;
        }
        if (pin->Stream() == index) {
            return S_OK;
        }
        return SwitchStream(*pin, index);
    });
}

STDMETHODIMP SplitterFilter::GetKeyFrameCount(UINT& count) {
    const std::lock_guard lock(StateLock());
    count = file ? static_cast<UINT>(file->Keyframes().size()) : 0;
    return file && file->AllIntra() ? S_FALSE : S_OK;
}

STDMETHODIMP SplitterFilter::GetKeyFrames(const GUID* format, REFERENCE_TIME* keyFrames, UINT& count) {
    if (keyFrames == nullptr) {
        return E_POINTER;
    }
    if (format != nullptr && *format != TIME_FORMAT_MEDIA_TIME) {
        return E_INVALIDARG;
    }
    const std::lock_guard lock(StateLock());
    const std::size_t available = file ? file->Keyframes().size() : 0;
    count = static_cast<UINT>(std::min<std::size_t>(count, available));
    if (count != 0) {
        std::copy_n(file->Keyframes().begin(), count, keyFrames);
    }
    return S_OK;
}

} // namespace brindlecast

#include "tests/filters/splitter/splitter_fixture.h"

#include <stdexcept>

namespace brindlecast {

SplitterRig::SplitterRig(bool keepBytes) : graph(std::make_unique<TestGraph>()) {
    splitter = module.CreateFilter(kClsidLavSplitterSource);
    seeking = Query<IMediaSeeking>(splitter, IID_IMediaSeeking);
    streams = Query<IAMStreamSelect>(splitter, IID_IAMStreamSelect);
    keyframeInfo = Query<IKeyFrameInfo>(splitter, __uuidof(IKeyFrameInfo));
    settings = Query<ILAVFSettings>(splitter, __uuidof(ILAVFSettings));
    video = RecordingSink::Create(MEDIATYPE_Video);
    audio = RecordingSink::Create(MEDIATYPE_Audio);
    video->KeepBytes(keepBytes);
    audio->KeepBytes(keepBytes);
    graph->Add(splitter.Get(), L"Splitter");
}

SplitterRig::~SplitterRig() {
    graph->Stop();
}

HRESULT SplitterRig::Load(const std::wstring& path) {
    const auto source = Query<IFileSourceFilter>(splitter, IID_IFileSourceFilter);
    return source->Load(path.c_str(), nullptr);
}

void SplitterRig::ConnectAll() {
    struct End {
        const wchar_t* pin;
        RecordingSink* sink;
    };
    for (const End& end : {End{L"Video", video.Get()}, End{L"Audio", audio.Get()}}) {
        const auto pin = Pin(end.pin);
        if (!pin)
            continue;
        graph->Add(end.sink, end.pin);
        if (FAILED(graph->ConnectDirect(pin.Get(), &end.sink->Pin())))
            throw std::runtime_error("a pin does not connect");
    }
    graph->RemoveClock();
}

void SplitterRig::Open(const std::wstring& name) {
    if (FAILED(Load(MediaPath(name))))
        throw std::runtime_error("the file does not load");
    ConnectAll();
}

HRESULT SplitterRig::Seek(LONGLONG target) {
    return seeking->SetPositions(&target, AM_SEEKING_AbsolutePositioning, nullptr, AM_SEEKING_NoPositioning);
}

std::vector<REFERENCE_TIME> SplitterRig::Keyframes() const {
    UINT count = 0;
    if (FAILED(keyframeInfo->GetKeyFrameCount(count)))
        return {};
    std::vector<REFERENCE_TIME> times(count + 1);
    if (FAILED(keyframeInfo->GetKeyFrames(&TIME_FORMAT_MEDIA_TIME, times.data(), count)))
        return {};
    times.resize(count);
    return times;
}

std::vector<SplitterRig::StreamInfo> SplitterRig::Streams() const {
    std::vector<StreamInfo> found;
    DWORD count = 0;
    streams->Count(&count);
    for (DWORD i = 0; i < count; ++i) {
        AM_MEDIA_TYPE* type = nullptr;
        WCHAR* name = nullptr;
        StreamInfo info;
        if (streams->Info(static_cast<long>(i), &type, &info.flags, nullptr, &info.group, &name, nullptr,
                          nullptr) != S_OK)
            continue;
        info.major = type->majortype;
        info.name = name;
        MediaType::FreeTaskMem(type);
        CoTaskMemFree(name);
        found.push_back(info);
    }
    return found;
}

} // namespace brindlecast

#include "filters/include/lav_splitter.h"
#include "tests/graph/fakes/fake_filter.h"

#include <amvideo.h>
#include <dvdmedia.h>
#include <uuids.h>
#include <vfwmsgs.h>

#include <cstring>
#include <sstream>
#include <utility>

// A splitter whose pins, streams and keyframes come from the script when it loads a file:
//   LAVSplitter.pins         "Video:video/1920/1080/400000;Audio:audio"   name:type,type…
//   LAVSplitter.streams      "audio:1:Korean;subtitle:0:-"                kind:flags:name, "-" for no name
//   LAVSplitter.nameFails    the stream that can be asked for everything but its name
//   LAVSplitter.enabledPins  pins that come with the first stream that is enabled
//   LAVSplitter.streamCount  how many streams it says it has; asking for more than there are fails
//   LAVSplitter.keyFrames    "0,20000000"
//   LAVSplitter.load         failure of loading; loadFailures, how many loads fail before one does not, and
//                            loadsBeforeFailure, how many do not before one fails
// A type is "audio", "subtitle", "text", or for the format blocks VideoInfo2 and VideoInfo
//   video/width/height/duration/subtype/compression/block
//   videoinfo/…
// with H264 where the subtype is left out, the subtype where the compression is, a compression in one digit
// as that number, and the block "short" (cut off), "null" (with its length alone) or "none".

namespace brindlecast::testing {

const char* const kFakeName = "LAVSplitter";
const CLSID kFakeClass = kClsidLavSplitterSource;

namespace {

constexpr GUID kSubtitleType = {0xE487EB08, 0x6B26, 0x4BE9, {0x9D, 0xD3, 0x99, 0x34, 0x34, 0xD3, 0x13, 0xFD}};
constexpr GUID kTextType = {0x73747874, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

std::vector<std::wstring> Split(const std::wstring& text, wchar_t separator) {
    std::vector<std::wstring> parts;
    std::wistringstream stream(text);
    for (std::wstring part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

std::wstring FieldOr(const std::vector<std::wstring>& fields, std::size_t index, const std::wstring& absent) {
    return index < fields.size() && !fields[index].empty() ? fields[index] : absent;
}

template <class Header>
FakeType VideoType(const GUID& formatType, const std::vector<std::wstring>& fields) {
    const std::wstring subtype = FieldOr(fields, 4, L"H264");
    const std::wstring compression = FieldOr(fields, 5, subtype);
    const std::wstring block = FieldOr(fields, 6, L"whole");
    Header header{};
    header.bmiHeader.biSize = sizeof(header.bmiHeader);
    header.bmiHeader.biWidth = std::stol(fields.at(1));
    header.bmiHeader.biHeight = std::stol(fields.at(2));
    header.bmiHeader.biCompression =
        compression.size() == 1 ? static_cast<DWORD>(compression[0] - L'0') : FourCc(compression);
    header.AvgTimePerFrame = std::stoll(fields.at(3));
    FakeType type{MEDIATYPE_Video, FourCcSubtype(subtype), formatType, std::vector<BYTE>(sizeof(header))};
    std::memcpy(type.format.data(), &header, sizeof(header));
    if (block == L"short") {
        // All but the last byte: what is read lies in front of it.
        type.format.pop_back();
    } else if (block == L"null") {
        type.formatIsMissing = true;
    } else if (block == L"none") {
        type.formatType = GUID_NULL;
        type.format.clear();
    }
    return type;
}

FakeType ParseType(const std::wstring& text) {
    const auto fields = Split(text, L'/');
    if (fields.at(0) == L"video") {
        return VideoType<VIDEOINFOHEADER2>(FORMAT_VideoInfo2, fields);
    }
    if (fields.at(0) == L"videoinfo") {
        return VideoType<VIDEOINFOHEADER>(FORMAT_VideoInfo, fields);
    }
    if (fields.at(0) == L"audio") {
        return CompressedAudioType();
    }
    return {fields.at(0) == L"text" ? kTextType : kSubtitleType, GUID_NULL, GUID_NULL, {}};
}

GUID MajorType(const std::wstring& kind) {
    if (kind == L"audio") {
        return MEDIATYPE_Audio;
    }
    if (kind == L"video") {
        return MEDIATYPE_Video;
    }
    return kind == L"text" ? kTextType : kSubtitleType;
}

class FakeSplitter final : public FakeFilter,
                           public ILAVFSettings,
                           public IKeyFrameInfo,
                           public IFileSourceFilter,
                           public IAMStreamSelect,
                           public IMediaSeeking {
public:
    FakeSplitter() : FakeFilter(L"LAVSplitter", kFakeClass) {}
    FAKE_UNKNOWN

    // ILAVFSettings
    STDMETHODIMP SetRuntimeConfig(BOOL value) override { return Set(L"SetRuntimeConfig(%d)", value); }
    STDMETHODIMP SetPreferredLanguages(LPCWSTR value) override {
        return Set(L"SetPreferredLanguages(%s)", value);
    }
    STDMETHODIMP SetPreferredSubtitleLanguages(LPCWSTR value) override {
        return Set(L"SetPreferredSubtitleLanguages(%s)", value);
    }
    STDMETHODIMP SetSubtitleMode(int value) override { return Set(L"SetSubtitleMode(%d)", value); }
    STDMETHODIMP SetTrayIcon(BOOL value) override { return Set(L"SetTrayIcon(%d)", value); }
    FAKE_UNEXPECTED(HRESULT, GetPreferredLanguages, LPWSTR*)
    FAKE_UNEXPECTED(HRESULT, GetPreferredSubtitleLanguages, LPWSTR*)
    FAKE_UNEXPECTED(int, GetSubtitleMode)
    FAKE_UNEXPECTED(BOOL, GetSubtitleMatchingLanguage)
    FAKE_UNEXPECTED(HRESULT, SetSubtitleMatchingLanguage, BOOL)
    FAKE_UNEXPECTED(BOOL, GetPGSForcedStream)
    FAKE_UNEXPECTED(HRESULT, SetPGSForcedStream, BOOL)
    FAKE_UNEXPECTED(BOOL, GetPGSOnlyForced)
    FAKE_UNEXPECTED(HRESULT, SetPGSOnlyForced, BOOL)
    FAKE_UNEXPECTED(int, GetVC1TimestampMode)
    FAKE_UNEXPECTED(HRESULT, SetVC1TimestampMode, int)
    FAKE_UNEXPECTED(HRESULT, SetSubstreamsEnabled, BOOL)
    FAKE_UNEXPECTED(BOOL, GetSubstreamsEnabled)
    FAKE_UNEXPECTED(HRESULT, SetVideoParsingEnabled, BOOL)
    FAKE_UNEXPECTED(BOOL, GetVideoParsingEnabled)
    FAKE_UNEXPECTED(HRESULT, SetFixBrokenHDPVR, BOOL)
    FAKE_UNEXPECTED(BOOL, GetFixBrokenHDPVR)
    FAKE_UNEXPECTED(HRESULT, SetFormatEnabled, LPCSTR, BOOL)
    FAKE_UNEXPECTED(BOOL, IsFormatEnabled, LPCSTR)
    FAKE_UNEXPECTED(HRESULT, SetStreamSwitchRemoveAudio, BOOL)
    FAKE_UNEXPECTED(BOOL, GetStreamSwitchRemoveAudio)
    FAKE_UNEXPECTED(HRESULT, GetAdvancedSubtitleConfig, LPWSTR*)
    FAKE_UNEXPECTED(HRESULT, SetAdvancedSubtitleConfig, LPCWSTR)
    FAKE_UNEXPECTED(HRESULT, SetUseAudioForHearingVisuallyImpaired, BOOL)
    FAKE_UNEXPECTED(BOOL, GetUseAudioForHearingVisuallyImpaired)
    FAKE_UNEXPECTED(HRESULT, SetMaxQueueMemSize, DWORD)
    FAKE_UNEXPECTED(DWORD, GetMaxQueueMemSize)
    FAKE_UNEXPECTED(BOOL, GetTrayIcon)
    FAKE_UNEXPECTED(HRESULT, SetPreferHighQualityAudioStreams, BOOL)
    FAKE_UNEXPECTED(BOOL, GetPreferHighQualityAudioStreams)
    FAKE_UNEXPECTED(HRESULT, SetLoadMatroskaExternalSegments, BOOL)
    FAKE_UNEXPECTED(BOOL, GetLoadMatroskaExternalSegments)
    FAKE_UNEXPECTED(HRESULT, GetFormats, LPSTR**, UINT*)
    FAKE_UNEXPECTED(HRESULT, SetNetworkStreamAnalysisDuration, DWORD)
    FAKE_UNEXPECTED(DWORD, GetNetworkStreamAnalysisDuration)
    FAKE_UNEXPECTED(HRESULT, SetMaxQueueSize, DWORD)
    FAKE_UNEXPECTED(DWORD, GetMaxQueueSize)
    FAKE_UNEXPECTED(HRESULT, SetStreamSwitchReselectSubtitles, BOOL)
    FAKE_UNEXPECTED(BOOL, GetStreamSwitchReselectSubtitles)

    // IKeyFrameInfo
    STDMETHODIMP GetKeyFrameCount(UINT& count) override {
        Record(kRecordCall, L"GetKeyFrameCount");
        count = static_cast<UINT>(Script("keyFrameCount", static_cast<long>(KeyFrames().size())));
        return Script("keyFrameCountResult");
    }
    STDMETHODIMP GetKeyFrames(const GUID* format, REFERENCE_TIME* times, UINT& count) override {
        Record(kRecordCall, FormatText(L"GetKeyFrames(%s, %u)",
                                       *format == TIME_FORMAT_MEDIA_TIME ? L"media time" : L"?", count));
        const auto keyFrames = KeyFrames();
        for (UINT i = 0; i < count && i < keyFrames.size(); ++i) {
            times[i] = keyFrames[i];
        }
        count = static_cast<UINT>(Script("keyFramesWritten", static_cast<long>(keyFrames.size())));
        return Script("keyFramesResult");
    }

    // IFileSourceFilter
    STDMETHODIMP Load(LPCOLESTR path, const AM_MEDIA_TYPE* type) override {
        Record(kRecordCall, FormatText(L"Load(%s, %s)", path, type == nullptr ? L"null" : L"type"));
        Record(kRecordQuery, FormatText(L"Load with %d filters alive", RecorderLiving()));
        AddPins("pins");
        // The counter lives in the script, because each build makes a new splitter.
        const long left = Script("loadsBeforeFailure", -1);
        if (left == 0) {
            return E_FAIL;
        }
        RecorderSetNumber("LAVSplitter.loadsBeforeFailure", left < 0 ? -1 : left - 1);
        if (CountDown("loadFailures")) {
            return E_FAIL;
        }
        return Script("load");
    }
    FAKE_UNEXPECTED(HRESULT, GetCurFile, LPOLESTR*, AM_MEDIA_TYPE*)

    // IAMStreamSelect
    STDMETHODIMP Count(DWORD* count) override {
        Record(kRecordQuery, L"Count");
        *count = static_cast<DWORD>(Script("streamCount", static_cast<long>(Streams().size())));
        return Script("countResult");
    }
    STDMETHODIMP Info(long index, AM_MEDIA_TYPE** type, DWORD* flags, LCID* language, DWORD* group,
                      WCHAR** name, IUnknown** object, IUnknown** unknown) override {
        Record(kRecordQuery,
               FormatText(L"Info(%d%s%s%s)", index, type != nullptr ? L", type" : L"",
                          flags != nullptr ? L", flags" : L"", name != nullptr ? L", name" : L""));
        if (Script("infoFails", -1) == index || (name != nullptr && Script("nameFails", -1) == index) ||
            language != nullptr || group != nullptr || object != nullptr || unknown != nullptr) {
            return E_FAIL;
        }
        const auto streams = Streams();
        if (static_cast<std::size_t>(index) >= streams.size()) {
            return S_FALSE;
        }
        const auto fields = Split(streams[static_cast<std::size_t>(index)], L':');
        if (type != nullptr) {
            *type = AllocateType({MajorType(fields.at(0)), GUID_NULL, GUID_NULL, {1, 2, 3}});
        }
        if (flags != nullptr) {
            *flags = std::stoul(fields.at(1));
        }
        if (name != nullptr) {
            *name = fields.at(2) == L"-" ? nullptr : CopyText(fields.at(2));
        }
        return S_OK;
    }
    STDMETHODIMP Enable(long index, DWORD flags) override {
        Record(kRecordCall, FormatText(L"Enable(%d, %u)", index, flags));
        if (flags == AMSTREAMSELECTENABLE_ENABLE && !std::exchange(hasEnabledPins, true)) {
            AddPins("enabledPins");
        }
        return Script("enable");
    }

    // IMediaSeeking
    STDMETHODIMP GetCapabilities(DWORD* capabilities) override {
        *capabilities = AM_SEEKING_CanSeekAbsolute | AM_SEEKING_CanGetDuration;
        return S_OK;
    }
    STDMETHODIMP CheckCapabilities(DWORD*) override { return S_OK; }
    STDMETHODIMP IsFormatSupported(const GUID* format) override {
        return *format == TIME_FORMAT_MEDIA_TIME ? S_OK : S_FALSE;
    }
    STDMETHODIMP QueryPreferredFormat(GUID* format) override { return GetTimeFormat(format); }
    STDMETHODIMP GetTimeFormat(GUID* format) override {
        *format = TIME_FORMAT_MEDIA_TIME;
        return S_OK;
    }
    STDMETHODIMP IsUsingTimeFormat(const GUID* format) override { return IsFormatSupported(format); }
    STDMETHODIMP SetTimeFormat(const GUID*) override {
        Record(kRecordCall, L"SetTimeFormat");
        return S_OK;
    }
    STDMETHODIMP GetDuration(LONGLONG* duration) override {
        *duration = LONGLONG{Script("durationMilliseconds", 60000)} * 10000;
        return Script("durationResult");
    }
    STDMETHODIMP GetStopPosition(LONGLONG* stop) override { return GetDuration(stop); }
    STDMETHODIMP GetCurrentPosition(LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP ConvertTimeFormat(LONGLONG* target, const GUID*, LONGLONG from, const GUID*) override {
        *target = from;
        return S_OK;
    }
    STDMETHODIMP SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG*, DWORD stopFlags) override {
        // The graph asks for the returned time on its own account.
        Record(kRecordCall, FormatText(L"SetPositions(%lld, %u, %u)", *current,
                                       currentFlags & ~static_cast<DWORD>(AM_SEEKING_ReturnTime), stopFlags));
        return Script("setPositions");
    }
    STDMETHODIMP GetPositions(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP GetAvailable(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP SetRate(double rate) override {
        Record(kRecordCall, FormatText(L"SetRate(%.2f)", rate));
        return Script("setRate");
    }
    STDMETHODIMP GetRate(double*) override { return E_NOTIMPL; }
    STDMETHODIMP GetPreroll(LONGLONG*) override { return E_NOTIMPL; }

protected:
    void* FindInterface(REFIID iid) override {
        if (iid == __uuidof(ILAVFSettings)) {
            return Offer("noSettings", static_cast<ILAVFSettings*>(this));
        }
        if (iid == __uuidof(IKeyFrameInfo)) {
            return Offer("noKeyFrameInfo", static_cast<IKeyFrameInfo*>(this));
        }
        if (iid == __uuidof(IFileSourceFilter)) {
            return Offer("noFileSource", static_cast<IFileSourceFilter*>(this));
        }
        if (iid == IID_IAMStreamSelect) {
            return Offer("noStreamSelect", static_cast<IAMStreamSelect*>(this));
        }
        const bool seeks = iid == __uuidof(IMediaSeeking) && Script("noSeeking") == 0;
        return seeks ? static_cast<IMediaSeeking*>(this) : nullptr;
    }

private:
    template <class Value>
    HRESULT Set(const wchar_t* format, const Value& value) {
        Record(kRecordCall, FormatText(format, value));
        return Script("rejectSettings");
    }
    void AddPins(const char* key) {
        const wchar_t* list = ScriptText(key);
        for (const std::wstring& pin : Split(list != nullptr ? list : L"", L';')) {
            const auto colon = pin.find(L':');
            std::vector<FakeType> types;
            for (const std::wstring& typeText : Split(pin.substr(colon + 1), L',')) {
                types.push_back(ParseType(typeText));
            }
            AddPin(pin.substr(0, colon).c_str(), PINDIR_OUTPUT, std::move(types));
        }
    }
    [[nodiscard]] std::vector<std::wstring> Streams() const {
        const wchar_t* list = ScriptText("streams");
        return Split(list != nullptr ? list : L"", L';');
    }
    [[nodiscard]] std::vector<REFERENCE_TIME> KeyFrames() const {
        const wchar_t* list = ScriptText("keyFrames");
        std::vector<REFERENCE_TIME> times;
        for (const std::wstring& time : Split(list != nullptr ? list : L"", L',')) {
            times.push_back(std::stoll(time));
        }
        return times;
    }
    static WCHAR* CopyText(const std::wstring& text) {
        const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
        auto* copy = static_cast<WCHAR*>(CoTaskMemAlloc(bytes));
        std::memcpy(copy, text.c_str(), bytes);
        return copy;
    }

    bool hasEnabledPins = false;
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeSplitter;
}

} // namespace brindlecast::testing

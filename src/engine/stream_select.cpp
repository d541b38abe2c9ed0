#include "engine/stream_select.h"

#include "engine/graph_pins.h"

#include <uuids.h>

#include <algorithm>
#include <memory>

namespace brindlecast {

namespace {

// More than any file has: every walk asks for each stream, on the main thread.
constexpr DWORD kMostStreams = 4096;

// The text type with FOURCC 'txts'.
constexpr GUID kMajorTypeText = {
    0x73747874, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

} // namespace

bool MatchesKind(const GUID& majorType, StreamKind kind) {
    if (kind == StreamKind::Audio) {
        return majorType == MEDIATYPE_Audio;
    }
    return majorType == kMajorTypeSubtitle || majorType == kMajorTypeText;
}

StreamWalk::StreamWalk(IBaseFilter* splitter) : select(QueryFor<IAMStreamSelect>(splitter)) {
    DWORD reported = 0;
    if (select != nullptr && SUCCEEDED(select->Count(&reported))) {
        count = std::min(reported, kMostStreams);
    }
}

StreamInfo StreamWalk::Info(DWORD index) const {
    return Ask(index, kType | kFlags | kName);
}

StreamInfo StreamWalk::Ask(DWORD index, unsigned wanted) const {
    AM_MEDIA_TYPE* type = nullptr;
    WCHAR* name = nullptr;
    StreamInfo info;
    const HRESULT result = select->Info(static_cast<long>(index), (wanted & kType) != 0 ? &type : nullptr,
                                        (wanted & kFlags) != 0 ? &info.flags : nullptr, nullptr, nullptr,
                                        (wanted & kName) != 0 ? &name : nullptr, nullptr, nullptr);
    if (FAILED(result)) {
        return {};
    }
    const std::unique_ptr<AM_MEDIA_TYPE, MediaTypeDeleter> ownedType(type);
    const std::unique_ptr<WCHAR, decltype(&CoTaskMemFree)> ownedName(name, &CoTaskMemFree);
    info.known = true;
    if (type != nullptr) {
        info.majorType = type->majortype;
    }
    if (name != nullptr) {
        info.name = name;
    }
    return info;
}

bool StreamWalk::IsOfKind(DWORD index, StreamKind kind) const {
    const StreamInfo stream = Ask(index, kType);
    return stream.known && MatchesKind(stream.majorType, kind);
}

int StreamWalk::CountOf(StreamKind kind) const {
    int found = 0;
    for (DWORD index = 0; index < count; ++index) {
        found += IsOfKind(index, kind) ? 1 : 0;
    }
    return found;
}

int StreamWalk::IndexOf(StreamKind kind, unsigned ordinal) const {
    unsigned passed = 0;
    for (DWORD index = 0; index < count; ++index) {
        if (IsOfKind(index, kind) && passed++ == ordinal) {
            return static_cast<int>(index);
        }
    }
    return -1;
}

int StreamWalk::FirstEnabled(StreamKind kind) const {
    int ordinal = 0;
    for (DWORD index = 0; index < count; ++index) {
        const StreamInfo stream = Ask(index, kType | kFlags);
        if (!stream.known || !MatchesKind(stream.majorType, kind)) {
            continue;
        }
        if ((stream.flags & AMSTREAMSELECTINFO_ENABLED) != 0) {
            return ordinal;
        }
        ++ordinal;
    }
    return -1;
}

std::wstring StreamWalk::NameOf(StreamKind kind, unsigned ordinal) const {
    unsigned passed = 0;
    for (DWORD index = 0; index < count; ++index) {
        const StreamInfo stream = Ask(index, kType | kName);
        if (stream.known && MatchesKind(stream.majorType, kind) && passed++ == ordinal) {
            return stream.name.value_or(std::wstring());
        }
    }
    return {};
}

} // namespace brindlecast

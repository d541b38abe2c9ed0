#pragma once

#include "base/win32/com_ptr.h"
#include "engine/directshow_interfaces.h"

#include <windows.h>

#include <optional>
#include <string>

namespace brindlecast {

// What one stream of a splitter is. `known` is false when the splitter could not say; such a stream is
// passed over.
struct StreamInfo {
    bool known = false;
    GUID majorType = GUID_NULL;
    DWORD flags = 0;
    std::optional<std::wstring> name;
};

enum class StreamKind { Audio, Subtitle };

// MEDIATYPE_Subtitle of the splitters.
inline constexpr GUID kMajorTypeSubtitle = {
    0xE487EB08, 0x6B26, 0x4BE9, {0x9D, 0xD3, 0x99, 0x34, 0x34, 0xD3, 0x13, 0xFD}};

// Whether streams of that major type are of that kind.
[[nodiscard]] bool MatchesKind(const GUID& majorType, StreamKind kind);

// One look at the streams of a splitter, by their index among all streams. A null splitter, or one that
// offers no stream selection, has none. Streams behind the first 4096 are left out.
class StreamWalk {
public:
    explicit StreamWalk(IBaseFilter* splitter);

    [[nodiscard]] DWORD Count() const { return count; }
    [[nodiscard]] StreamInfo Info(DWORD index) const;
    [[nodiscard]] HRESULT Enable(DWORD index, DWORD flags) const {
        return select->Enable(static_cast<long>(index), flags);
    }

    // How many streams are of that kind.
    [[nodiscard]] int CountOf(StreamKind kind) const;
    // The index of the stream that is number `ordinal`, from 0, among those of its kind; -1 if there is
    // none.
    [[nodiscard]] int IndexOf(StreamKind kind, unsigned ordinal) const;
    // The ordinal of the first enabled stream of that kind, -1 if there is none.
    [[nodiscard]] int FirstEnabled(StreamKind kind) const;
    // Empty when there is no such stream or no name.
    [[nodiscard]] std::wstring NameOf(StreamKind kind, unsigned ordinal) const;

private:
    enum Wanted : unsigned { kType = 1, kFlags = 2, kName = 4 };
    [[nodiscard]] StreamInfo Ask(DWORD index, unsigned wanted) const;
    [[nodiscard]] bool IsOfKind(DWORD index, StreamKind kind) const;

    ComPtr<IAMStreamSelect> select;
    DWORD count = 0;
};

} // namespace brindlecast

#pragma once

#include <windows.h>

#include <strmif.h>

#include <string>
#include <vector>

namespace brindlecast::testing {

// A media type of a fake pin.
struct FakeType {
    GUID major = GUID_NULL;
    GUID subtype = GUID_NULL;
    GUID formatType = GUID_NULL;
    std::vector<BYTE> format;
    // The type says how long its format block is, and has none.
    bool formatIsMissing = false;
};

// An allocated copy, as a filter hands it out.
[[nodiscard]] AM_MEDIA_TYPE* AllocateType(const FakeType& type);
void FillType(AM_MEDIA_TYPE& target, const FakeType& type);
[[nodiscard]] FakeType CopyType(const AM_MEDIA_TYPE& type);

// The number of a code of four characters, the first in the lowest byte.
[[nodiscard]] DWORD FourCc(const std::wstring& code);
[[nodiscard]] GUID FourCcSubtype(const std::wstring& code);

// The compressed types that only the fake decoders take, and the plain ones that only renderers take.
[[nodiscard]] FakeType CompressedAudioType();
[[nodiscard]] FakeType PlainAudioType();
[[nodiscard]] FakeType PlainVideoType();

} // namespace brindlecast::testing

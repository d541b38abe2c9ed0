#include "tests/graph/fakes/fake_types.h"

#include <uuids.h>

#include <cstring>

namespace brindlecast::testing {

void FillType(AM_MEDIA_TYPE& target, const FakeType& type) {
    target = AM_MEDIA_TYPE{};
    target.majortype = type.major;
    target.subtype = type.subtype;
    target.formattype = type.formatType;
    target.bTemporalCompression = TRUE;
    target.cbFormat = static_cast<ULONG>(type.format.size());
    if (!type.format.empty() && !type.formatIsMissing) {
        target.pbFormat = static_cast<BYTE*>(CoTaskMemAlloc(type.format.size()));
        std::memcpy(target.pbFormat, type.format.data(), type.format.size());
    }
}

AM_MEDIA_TYPE* AllocateType(const FakeType& type) {
    auto* allocated = static_cast<AM_MEDIA_TYPE*>(CoTaskMemAlloc(sizeof(AM_MEDIA_TYPE)));
    FillType(*allocated, type);
    return allocated;
}

FakeType CopyType(const AM_MEDIA_TYPE& type) {
    FakeType copy{type.majortype, type.subtype, type.formattype, std::vector<BYTE>(type.cbFormat),
                  type.cbFormat != 0 && type.pbFormat == nullptr};
    if (type.pbFormat != nullptr) {
        std::memcpy(copy.format.data(), type.pbFormat, type.cbFormat);
    }
    return copy;
}

DWORD FourCc(const std::wstring& code) {
    DWORD number = 0;
    for (std::size_t i = 0; i < code.size() && i < 4; ++i) {
        number |= static_cast<DWORD>(code[i] & 0xFF) << (8 * i);
    }
    return number;
}

GUID FourCcSubtype(const std::wstring& code) {
    return {FourCc(code), 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
}

FakeType CompressedAudioType() {
    // A subtype of nobody's, so that only the fake decoder takes it.
    return {MEDIATYPE_Audio,
            {0x6B0A5E8C, 0x3D41, 0x4B5F, {0x9A, 0x77, 0x10, 0x2E, 0x5C, 0x8D, 0x44, 0x01}},
            GUID_NULL,
            {}};
}

FakeType PlainAudioType() {
    // Again subtypes of nobody's: no renderer of the platform may take the sound or the picture.
    return {MEDIATYPE_Audio,
            {0x6B0A5E8C, 0x3D41, 0x4B5F, {0x9A, 0x77, 0x10, 0x2E, 0x5C, 0x8D, 0x44, 0x03}},
            GUID_NULL,
            {}};
}

FakeType PlainVideoType() {
    return {MEDIATYPE_Video,
            {0x6B0A5E8C, 0x3D41, 0x4B5F, {0x9A, 0x77, 0x10, 0x2E, 0x5C, 0x8D, 0x44, 0x02}},
            GUID_NULL,
            {}};
}

} // namespace brindlecast::testing

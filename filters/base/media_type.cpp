#include "filters/base/media_type.h"

#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace brindlecast {

MediaType::MediaType(const AM_MEDIA_TYPE& source) {
    if (FAILED(Copy(structure, source))) {
        throw std::bad_alloc();
    }
}

MediaType::MediaType(const GUID& major, const GUID& sub) {
    structure.majortype = major;
    structure.subtype = sub;
    structure.formattype = FORMAT_None;
}

MediaType::MediaType(const MediaType& other) : MediaType(other.structure) {}

MediaType::MediaType(MediaType&& other) noexcept
    : structure(std::exchange(other.structure, AM_MEDIA_TYPE{})) {}

MediaType& MediaType::operator=(MediaType other) noexcept {
    std::swap(structure, other.structure);
    return *this;
}

MediaType::~MediaType() {
    FreeContent(structure);
}

AM_MEDIA_TYPE* MediaType::Put() noexcept {
    FreeContent(structure);
    structure = {};
    return &structure;
}

BYTE* MediaType::AllocateFormat(const GUID& formatType, std::size_t size) {
    if (size > std::numeric_limits<ULONG>::max()) {
        throw std::bad_alloc();
    }
    BYTE* block = nullptr;
    if (size != 0) {
        block = static_cast<BYTE*>(CoTaskMemAlloc(size));
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        std::memset(block, 0, size);
    }
    CoTaskMemFree(structure.pbFormat);
    structure.pbFormat = block;
    structure.cbFormat = static_cast<ULONG>(size);
    structure.formattype = formatType;
    return block;
}

void MediaType::SetFormat(const GUID& formatType, const void* data, std::size_t size) {
    BYTE* block = AllocateFormat(formatType, size);
    if (size != 0) {
        std::memcpy(block, data, size);
    }
}

bool MediaType::operator==(const MediaType& other) const noexcept {
    const AM_MEDIA_TYPE& a = structure;
    const AM_MEDIA_TYPE& b = other.structure;
    if (a.majortype != b.majortype || a.subtype != b.subtype || a.formattype != b.formattype ||
        a.cbFormat != b.cbFormat) {
        return false;
    }
    return a.cbFormat == 0 || std::memcmp(a.pbFormat, b.pbFormat, a.cbFormat) == 0;
}

bool MediaType::Matches(const AM_MEDIA_TYPE& pattern) const noexcept {
    if (pattern.majortype != GUID_NULL && pattern.majortype != structure.majortype) {
        return false;
    }
    if (pattern.subtype != GUID_NULL && pattern.subtype != structure.subtype) {
        return false;
    }
    if (pattern.formattype == GUID_NULL) {
        return true;
    }
    if (pattern.formattype != structure.formattype || pattern.cbFormat != structure.cbFormat) {
        return false;
    }
    return pattern.cbFormat == 0 ||
           std::memcmp(pattern.pbFormat, structure.pbFormat, structure.cbFormat) == 0;
}

bool MediaType::IsPartial(const AM_MEDIA_TYPE& type) noexcept {
    return type.majortype == GUID_NULL || type.subtype == GUID_NULL || type.formattype == GUID_NULL;
}

AM_MEDIA_TYPE* MediaType::NewTaskMemCopy() const noexcept {
    auto* copy = static_cast<AM_MEDIA_TYPE*>(CoTaskMemAlloc(sizeof(AM_MEDIA_TYPE)));
    if (copy != nullptr && FAILED(CopyTo(*copy))) {
        CoTaskMemFree(copy);
        copy = nullptr;
    }
    return copy;
}

HRESULT MediaType::CopyTo(AM_MEDIA_TYPE& target) const noexcept {
    return Copy(target, structure);
}

void MediaType::FreeContent(AM_MEDIA_TYPE& type) noexcept {
    CoTaskMemFree(type.pbFormat);
    type.pbFormat = nullptr;
    type.cbFormat = 0;
    if (type.pUnk != nullptr) {
        type.pUnk->Release();
    }
    type.pUnk = nullptr;
}

void MediaType::FreeTaskMem(AM_MEDIA_TYPE* type) noexcept {
    if (type == nullptr) {
        return;
    }
    FreeContent(*type);
    CoTaskMemFree(type);
}

HRESULT MediaType::Copy(AM_MEDIA_TYPE& target, const AM_MEDIA_TYPE& source) noexcept {
    BYTE* block = nullptr;
    const bool hasBlock = source.cbFormat != 0 && source.pbFormat != nullptr;
    if (hasBlock) {
        block = static_cast<BYTE*>(CoTaskMemAlloc(source.cbFormat));
        if (block == nullptr) {
            return E_OUTOFMEMORY;
        }
        std::memcpy(block, source.pbFormat, source.cbFormat);
    }
    target = source;
    target.pbFormat = block;
    target.cbFormat = hasBlock ? source.cbFormat : 0;
    if (target.pUnk != nullptr) {
        target.pUnk->AddRef();
    }
    return S_OK;
}

} // namespace brindlecast

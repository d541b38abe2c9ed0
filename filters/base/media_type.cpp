#include "filters/base/media_type.h"

#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace brindlecast {

MediaType::MediaType(const AM_MEDIA_TYPE& source) {
    if (FAILED(Copy(type_, source)))
        throw std::bad_alloc();
}

MediaType::MediaType(const GUID& major, const GUID& sub) {
    type_.majortype = major;
    type_.subtype = sub;
    type_.formattype = FORMAT_None;
}

MediaType::MediaType(const MediaType& other) : MediaType(other.type_) {}

MediaType::MediaType(MediaType&& other) noexcept : type_(std::exchange(other.type_, AM_MEDIA_TYPE{})) {}

MediaType& MediaType::operator=(MediaType other) noexcept {
    std::swap(type_, other.type_);
    return *this;
}

MediaType::~MediaType() {
    FreeContent(type_);
}

AM_MEDIA_TYPE* MediaType::Put() noexcept {
    FreeContent(type_);
    type_ = {};
    return &type_;
}

BYTE* MediaType::AllocateFormat(const GUID& formatType, std::size_t size) {
    if (size > std::numeric_limits<ULONG>::max())
        throw std::bad_alloc();
    BYTE* block = nullptr;
    if (size != 0) {
        block = static_cast<BYTE*>(CoTaskMemAlloc(size));
        if (block == nullptr)
            throw std::bad_alloc();
        std::memset(block, 0, size);
    }
    CoTaskMemFree(type_.pbFormat);
    type_.pbFormat = block;
    type_.cbFormat = static_cast<ULONG>(size);
    type_.formattype = formatType;
    return block;
}

void MediaType::SetFormat(const GUID& formatType, const void* data, std::size_t size) {
    BYTE* block = AllocateFormat(formatType, size);
    if (size != 0)
        std::memcpy(block, data, size);
}

bool MediaType::operator==(const MediaType& other) const noexcept {
    const AM_MEDIA_TYPE& a = type_;
    const AM_MEDIA_TYPE& b = other.type_;
    if (a.majortype != b.majortype || a.subtype != b.subtype || a.formattype != b.formattype ||
        a.cbFormat != b.cbFormat)
        return false;
    return a.cbFormat == 0 || std::memcmp(a.pbFormat, b.pbFormat, a.cbFormat) == 0;
}

bool MediaType::Matches(const AM_MEDIA_TYPE& pattern) const noexcept {
    if (pattern.majortype != GUID_NULL && pattern.majortype != type_.majortype)
        return false;
    if (pattern.subtype != GUID_NULL && pattern.subtype != type_.subtype)
        return false;
    if (pattern.formattype == GUID_NULL)
        return true;
    if (pattern.formattype != type_.formattype || pattern.cbFormat != type_.cbFormat)
        return false;
    return pattern.cbFormat == 0 || std::memcmp(pattern.pbFormat, type_.pbFormat, type_.cbFormat) == 0;
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
    return Copy(target, type_);
}

void MediaType::FreeContent(AM_MEDIA_TYPE& type) noexcept {
    CoTaskMemFree(type.pbFormat);
    type.pbFormat = nullptr;
    type.cbFormat = 0;
    if (type.pUnk != nullptr)
        type.pUnk->Release();
    type.pUnk = nullptr;
}

void MediaType::FreeTaskMem(AM_MEDIA_TYPE* type) noexcept {
    if (type == nullptr)
        return;
    FreeContent(*type);
    CoTaskMemFree(type);
}

HRESULT MediaType::Copy(AM_MEDIA_TYPE& target, const AM_MEDIA_TYPE& source) noexcept {
    BYTE* block = nullptr;
    const bool hasBlock = source.cbFormat != 0 && source.pbFormat != nullptr;
    if (hasBlock) {
        block = static_cast<BYTE*>(CoTaskMemAlloc(source.cbFormat));
        if (block == nullptr)
            return E_OUTOFMEMORY;
        std::memcpy(block, source.pbFormat, source.cbFormat);
    }
    target = source;
    target.pbFormat = block;
    target.cbFormat = hasBlock ? source.cbFormat : 0;
    if (target.pUnk != nullptr)
        target.pUnk->AddRef();
    return S_OK;
}

} // namespace brindlecast

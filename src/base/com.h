#pragma once

// What code that is free of the window system needs of COM. On Windows these are the platform's own
// declarations; elsewhere the same names, so that reference-counted classes are tested natively as well.
#ifdef _WIN32

#include <windows.h>

#include <unknwn.h>

#else

#include <cstdint>

using HRESULT = std::int32_t;
using ULONG = std::uint32_t;

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
    bool operator==(const GUID&) const = default;
};
using REFIID = const GUID&;

#define STDMETHODCALLTYPE
#define STDMETHODIMP HRESULT
#define STDMETHODIMP_(type) type

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr auto E_NOTIMPL = static_cast<HRESULT>(0x80004001U);
inline constexpr auto E_NOINTERFACE = static_cast<HRESULT>(0x80004002U);
inline constexpr auto E_POINTER = static_cast<HRESULT>(0x80004003U);
inline constexpr auto E_FAIL = static_cast<HRESULT>(0x80004005U);
inline constexpr auto E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000EU);

constexpr bool FAILED(HRESULT result) {
    return result < 0;
}

struct IUnknown {
    virtual HRESULT QueryInterface(REFIID iid, void** out) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};

#endif

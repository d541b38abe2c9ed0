#pragma once

#include "base/com.h"
#include "base/geometry.h"
#include "base/time_types.h"

#include <cstdint>
#include <limits>

// The interfaces between what renders subtitles, what keeps the pictures, and what draws them. The order of
// the methods is binary contract. A structure is never returned by value, because compilers differ in how a
// method does that; the caller hands in the place and gets it back.

namespace brindlecast {

// The memory of a picture: 32 bits a pixel in the order blue, green, red, alpha, colour already multiplied by
// alpha, rows from top to bottom. Owns nothing.
struct SubPicDesc {
    std::uint32_t type = 0;
    std::int32_t width = 0;       // pixels
    std::int32_t height = 0;      // pixels
    std::int32_t bpp = 0;         // bits per pixel
    std::int32_t pitch = 0;       // bytes from one row to the next
    std::uint8_t* bits = nullptr; // row 0
    Rect videoRect;
};

// A rectangle that holds nothing and that the first pixel widens to itself.
inline constexpr Rect kInvertedRect = {
    std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::max(),
    std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::min()};

// A picture of full frame size that is valid from its start to before its stop. The methods lock nothing: a
// picture is filled by one thread and only read from then on. AddRef and Release may come from any thread.
// Methods with a result of HRESULT answer E_POINTER for a null pointer.
struct ISubPic : public IUnknown {
    static constexpr GUID kIid = {
        0xCF0D7D6A, 0xA567, 0x4C0E, {0xAE, 0x5E, 0xBC, 0xBD, 0x3D, 0x7B, 0x0D, 0x8D}};

    [[nodiscard]] virtual Time100ns STDMETHODCALLTYPE GetStart() = 0;
    [[nodiscard]] virtual Time100ns STDMETHODCALLTYPE GetStop() = 0;
    virtual void STDMETHODCALLTYPE SetStart(Time100ns time) = 0;
    virtual void STDMETHODCALLTYPE SetStop(Time100ns time) = 0;
    // The part that holds pixels.
    virtual HRESULT STDMETHODCALLTYPE GetDirtyRect(Rect* rect) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDirtyRect(const Rect* rect) = 0;
    virtual void STDMETHODCALLTYPE ClearDirtyRect() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSize(Size* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMaxSize(Size* size) = 0;
    // Stored for whoever asks; nothing depends on them.
    [[nodiscard]] virtual Time100ns STDMETHODCALLTYPE GetSegmentStart() = 0;
    [[nodiscard]] virtual Time100ns STDMETHODCALLTYPE GetSegmentStop() = 0;
    virtual void STDMETHODCALLTYPE SetSegmentStart(Time100ns time) = 0;
    virtual void STDMETHODCALLTYPE SetSegmentStop(Time100ns time) = 0;
    // Gives access to the picture's own memory until Unlock. E_FAIL when it is locked already: a guard
    // against a second caller, not a mutex.
    virtual HRESULT STDMETHODCALLTYPE Lock(SubPicDesc& desc) = 0;
    // `drawn`: the part that now holds pixels; null or one wholly outside leaves the dirty rectangle alone.
    // E_FAIL when the picture is not locked.
    virtual HRESULT STDMETHODCALLTYPE Unlock(const Rect* drawn) = 0;
    // Draws `src` of this picture at `dst` of `target`, over the smaller of both sizes, as if colours were
    // not multiplied by alpha. S_FALSE when a rectangle is empty, E_NOTIMPL unless both have 32 bits a pixel.
    virtual HRESULT STDMETHODCALLTYPE AlphaBlt(const Rect* src, const Rect* dst, SubPicDesc* target) = 0;
    // E_NOTIMPL.
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved2() = 0;
};

// Makes pictures of the current size. Not locked: one thread at a time.
struct ISubPicAllocator : public IUnknown {
    static constexpr GUID kIid = {
        0x8A9B0C1D, 0x2E3F, 0x4A5B, {0x6C, 0x7D, 0x8E, 0x9F, 0x0A, 0x1B, 0x2C, 0x3D}};

    // For the pictures made from now on.
    virtual HRESULT STDMETHODCALLTYPE SetCurSize(Size size) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetCurVidRect(Rect rect) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCurSize(Size* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCurVidRect(Rect* rect) = 0;
    [[nodiscard]] virtual bool STDMETHODCALLTYPE IsDynamicWriteOnly() = 0;
    // A new picture, all zero, with one reference for the caller. E_OUTOFMEMORY when its memory can't be had.
    virtual HRESULT STDMETHODCALLTYPE AllocDynamic(ISubPic** picture) = 0;
    // One picture for all callers, made anew when the current size has changed, with a reference for the
    // caller.
    virtual HRESULT STDMETHODCALLTYPE GetStatic(ISubPic** picture) = 0;
    // Gives back the allocator's own reference to that picture.
    virtual HRESULT STDMETHODCALLTYPE FreeStatic() = 0;
    // S_OK.
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    // E_NOTIMPL.
    virtual HRESULT STDMETHODCALLTYPE Reserved2() = 0;
    // Answers `result`, which is never null.
    virtual Size* STDMETHODCALLTYPE GetMaxSize(Size* result) = 0;
};

// Place of an event in a provider's list, counted from 1; 0 is no place.
using SubPicPosition = std::uintptr_t;

// Events in the order of their starts, and their pictures. From any thread: whoever calls holds Lock over as
// many calls as must see the same events. `fps` is not used.
struct ISubPicProvider : public IUnknown {
    static constexpr GUID kIid = {
        0xD62B9A1A, 0x879A, 0x42DB, {0xAB, 0x04, 0x88, 0xAA, 0x8F, 0x24, 0x3C, 0xFD}};

    virtual HRESULT STDMETHODCALLTYPE Lock() = 0;
    virtual HRESULT STDMETHODCALLTYPE Unlock() = 0;
    // The first event that stops after `rt`, or 0.
    [[nodiscard]] virtual SubPicPosition STDMETHODCALLTYPE GetStartPosition(Time100ns rt, double fps) = 0;
    // The next event, or 0.
    [[nodiscard]] virtual SubPicPosition STDMETHODCALLTYPE GetNext(SubPicPosition position) = 0;
    // 0 for a position that is none.
    [[nodiscard]] virtual Time100ns STDMETHODCALLTYPE GetStart(SubPicPosition position, double fps) = 0;
    [[nodiscard]] virtual Time100ns STDMETHODCALLTYPE GetStop(SubPicPosition position, double fps) = 0;
    [[nodiscard]] virtual bool STDMETHODCALLTYPE IsAnimated(SubPicPosition position) = 0;
    // Draws what is shown at `rt`; `bbox` becomes what holds all of it. S_OK when something was drawn,
    // S_FALSE when not.
    virtual HRESULT STDMETHODCALLTYPE Render(SubPicDesc& desc, Time100ns rt, double fps, Rect& bbox) = 0;
    virtual void STDMETHODCALLTYPE SetVideoSize(Size size) = 0;
    // Answers `result`, which is never null.
    virtual Size* STDMETHODCALLTYPE GetVideoSize(Size* result) = 0;
    // Writes 0.
    virtual HRESULT STDMETHODCALLTYPE Reserved1(std::uint32_t* result) = 0;
};

// Keeps rendered pictures for as long as their events last. From any thread.
struct ISubPicQueue : public IUnknown {
    static constexpr GUID kIid = {
        0x12D3A4B5, 0x6C7D, 0x8E9F, {0x0A, 0x1B, 0x2C, 0x3D, 0x4E, 0x5F, 0x6A, 0x7B}};

    // Drops all pictures. Null: no provider any more.
    virtual HRESULT STDMETHODCALLTYPE SetSubPicProvider(ISubPicProvider* newProvider) = 0;
    // With a reference for the caller; null when there is none. E_POINTER for a null result.
    virtual HRESULT STDMETHODCALLTYPE GetSubPicProvider(ISubPicProvider** result) = 0;
    virtual void STDMETHODCALLTYPE SetFPS(double newFps) = 0;
    [[nodiscard]] virtual double STDMETHODCALLTYPE GetFPS() = 0;
    virtual void STDMETHODCALLTYPE SetTime(Time100ns newTime) = 0;
    [[nodiscard]] virtual Time100ns STDMETHODCALLTYPE GetTime() = 0;
    // The picture of that time, with a reference for the caller; one that is not kept yet is rendered before
    // the call returns. S_FALSE when there is nothing to show, E_POINTER for a null result, E_FAIL without a
    // provider or an allocator.
    virtual HRESULT STDMETHODCALLTYPE LookupSubPic(Time100ns rt, ISubPic** picture) = 0;
    // Drops the pictures that start at `rt` or later; all of them when it is negative.
    virtual void STDMETHODCALLTYPE Invalidate(Time100ns rt) = 0;
    virtual void STDMETHODCALLTYPE InvalidateAll() = 0;
    [[nodiscard]] virtual std::int32_t STDMETHODCALLTYPE GetQueueCount() = 0;
};

} // namespace brindlecast

#pragma once

#include <windows.h>

#include <strmif.h>
#include <unknwn.h>

// What MpcVideoRenderer64.ax offers besides the standard DirectShow interfaces. The order of the methods is
// the binary contract: every slot is named, also those that the player does not call, because other hosts
// call them. No interface has a virtual destructor, which would take two slots.

struct ID3D11Device;

namespace brindlecast {

// The video renderer.
inline constexpr GUID kClsidMpcVideoRenderer = {
    0x71F080AA, 0x8661, 0x4093, {0xB1, 0x5E, 0x4F, 0x69, 0x03, 0xE7, 0x7D, 0x0A}};

// Options of the renderer, keyed by 8-bit names. Answers: E_NOTIMPL for a method that is not implemented,
// E_POINTER for a null pointer, E_INVALIDARG for a wrong name or type of field, E_ABORT where the field is
// right and has no value now. Texts and binary results are allocated with CoTaskMemAlloc and belong to the
// caller.
struct IExFilterConfig : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Flt_GetBool(LPCSTR field, bool* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_GetInt(LPCSTR field, int* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_GetInt64(LPCSTR field, __int64* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_GetDouble(LPCSTR field, double* value) = 0;
    // `size`: characters.
    virtual HRESULT STDMETHODCALLTYPE Flt_GetString(LPCSTR field, LPWSTR* value, unsigned* size) = 0;
    // `size`: bytes.
    virtual HRESULT STDMETHODCALLTYPE Flt_GetBin(LPCSTR field, LPVOID* value, unsigned* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_SetBool(LPCSTR field, bool value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_SetInt(LPCSTR field, int value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_SetInt64(LPCSTR field, __int64 value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_SetDouble(LPCSTR field, double value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_SetString(LPCSTR field, LPWSTR value, int size) = 0;
    virtual HRESULT STDMETHODCALLTYPE Flt_SetBin(LPCSTR field, LPVOID value, int size) = 0;
};

// Draws over the frame. Implemented by the player, called by the renderer on its drawing thread. While it
// calls Render11 the renderer has bound its render target, a vertex shader and input layout that take five
// floats a vertex (position in the first three, texture coordinate in the last two), and a pixel shader that
// samples texture slot 0 with sampler slot 0 (premultiplied alpha). The callback restores no state.
struct ISubRender11Callback : public IUnknown {
    // Null: release everything that belongs to the device.
    virtual HRESULT STDMETHODCALLTYPE SetDevice11(ID3D11Device* device) = 0;
    // Times in 100 ns units on the file's time line; rectangles in pixels of the render target. Answers 0
    // when something was drawn and 1 when not. `stretch` is 1.0, `xOffset` and `flags` are 0.
    virtual HRESULT STDMETHODCALLTYPE Render11(REFERENCE_TIME start, REFERENCE_TIME stop,
                                               REFERENCE_TIME frameDuration, RECT video, RECT originalVideo,
                                               RECT viewport, double stretch, int xOffset, DWORD flags) = 0;
};

// Takes the callback that draws over the frame.
struct ISubRender11 : public IUnknown {
    // Keeps a reference to the callback; null drops it.
    virtual HRESULT STDMETHODCALLTYPE SetCallback11(ISubRender11Callback* callback) = 0;
};

} // namespace brindlecast

__CRT_UUID_DECL(brindlecast::IExFilterConfig, 0x37CBDF10, 0xD65E, 0x4E5A, 0x8F, 0x37, 0x40, 0xE0, 0xC8, 0xEA,
                0x16, 0x95)
__CRT_UUID_DECL(brindlecast::ISubRender11, 0x524FA4AC, 0x35CF, 0x402B, 0x90, 0x15, 0x30, 0x0F, 0xBC, 0x43,
                0x25, 0x63)
__CRT_UUID_DECL(brindlecast::ISubRender11Callback, 0x1B430F17, 0x4CB2, 0x4C6B, 0xA8, 0x50, 0x18, 0x47, 0xF9,
                0x67, 0x7C, 0x75)

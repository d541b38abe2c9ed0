#include "base/trace.h"
#include "base/win32/unique_handle.h"
#include "engine/player_engine.h"
#include "filters/include/lav_audio.h"
#include "filters/include/lav_video.h"

namespace brindlecast {

namespace {

using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, LPVOID*);

} // namespace

HMODULE* PlayerEngine::ModuleSlot(const CLSID& clsid) {
    if (clsid == kClsidLavSplitterSource) {
        return &splitterModule;
    }
    if (clsid == kClsidLavVideo) {
        return &videoModule;
    }
    if (clsid == kClsidLavAudio) {
        return &audioModule;
    }
    if (clsid == kClsidMpcVideoRenderer) {
        return &rendererModule;
    }
    return nullptr;
}

HRESULT PlayerEngine::LoadFilterFromModule(const std::wstring& path, const CLSID& clsid, IBaseFilter** out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    *out = nullptr;
    UniqueModule module(LoadLibraryW(path.c_str()));
    if (!module) {
        const DWORD error = GetLastError();
        Trace(L"[Brindlecast] Failed to load: %s (error=%d)\n", path, error);
        return HRESULT_FROM_WIN32(error);
    }
    const auto getClassObject = FindFunction<GetClassObject>(module.Get(), "DllGetClassObject");
    if (getClassObject == nullptr) {
        return E_FAIL;
    }
    // Declared behind the module: the factory must go before the module may.
    ComPtr<IClassFactory> factory;
    HRESULT result =
        Obtain(factory, [&](IClassFactory** given) { return getClassObject(clsid, IID_PPV_ARGS(given)); });
    if (FAILED(result)) {
        Trace(L"[Brindlecast] DllGetClassObject failed: 0x%08X\n", result);
        return result;
    }
    // Handed on when it succeeded alone: what a failed call has written is nobody's.
    IBaseFilter* filter = nullptr;
    result = factory->CreateInstance(nullptr, IID_PPV_ARGS(&filter));
    if (FAILED(result)) {
        Trace(L"[Brindlecast] CreateInstance failed: 0x%08X\n", result);
        return result;
    }
    // The filter's code lives in the module, so the handle outlives this function in any case.
    const HMODULE loaded = module.Release();
    if (HMODULE* slot = ModuleSlot(clsid); slot != nullptr) {
        if (*slot != nullptr) {
            FreeLibrary(*slot);
        }
        *slot = loaded;
    }
    *out = filter;
    Trace(L"[Brindlecast] Loaded filter from: %s\n", path);
    return S_OK;
}

} // namespace brindlecast

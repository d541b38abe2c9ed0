#include "filters/include/mpc_video_renderer.h"
#include "tests/graph/fakes/fake_filter.h"

#include <control.h>
#include <uuids.h>

#include <cstring>

// A video renderer without a picture. Its script: "MpcVideoRenderer64.width" and ".height", the size of the
// video (0 fails),
// ".positionMilliseconds" (absent: it can't say), ".setInt", ".setBool", ".setCallback", ".windowPosition":
// failures.

namespace brindlecast::testing {

const char* const kFakeName = "MpcVideoRenderer64";
const CLSID kFakeClass = kClsidMpcVideoRenderer;

namespace {

class FakeVideoRenderer final : public FakeFilter,
                                public IExFilterConfig,
                                public ISubRender11,
                                public IVideoWindow,
                                public IBasicVideo,
                                public IMediaSeeking {
public:
    FakeVideoRenderer() : FakeFilter(L"MpcVideoRenderer64", kFakeClass) {
        AddPin(L"Input", PINDIR_INPUT, {PlainVideoType()});
    }
    FAKE_UNKNOWN

    // IExFilterConfig
    STDMETHODIMP Flt_SetBool(LPCSTR field, bool value) override {
        Record(kRecordCall, FormatText(L"Flt_SetBool(%s, %d)", Widen(field), value));
        return Script("setBool");
    }
    STDMETHODIMP Flt_SetInt(LPCSTR field, int value) override {
        Record(kRecordCall, FormatText(L"Flt_SetInt(%s, %d)", Widen(field), value));
        return Script("setInt");
    }
    FAKE_UNEXPECTED(HRESULT, Flt_GetBool, LPCSTR, bool*)
    FAKE_UNEXPECTED(HRESULT, Flt_GetInt, LPCSTR, int*)
    FAKE_UNEXPECTED(HRESULT, Flt_GetInt64, LPCSTR, __int64*)
    FAKE_UNEXPECTED(HRESULT, Flt_GetDouble, LPCSTR, double*)
    FAKE_UNEXPECTED(HRESULT, Flt_GetString, LPCSTR, LPWSTR*, unsigned*)
    FAKE_UNEXPECTED(HRESULT, Flt_GetBin, LPCSTR, LPVOID*, unsigned*)
    FAKE_UNEXPECTED(HRESULT, Flt_SetInt64, LPCSTR, __int64)
    FAKE_UNEXPECTED(HRESULT, Flt_SetDouble, LPCSTR, double)
    FAKE_UNEXPECTED(HRESULT, Flt_SetString, LPCSTR, LPWSTR, int)
    FAKE_UNEXPECTED(HRESULT, Flt_SetBin, LPCSTR, LPVOID, int)

    // ISubRender11
    STDMETHODIMP SetCallback11(ISubRender11Callback* newCallback) override {
        Record(kRecordCall, FormatText(L"SetCallback11(%s)", newCallback != nullptr ? L"callback" : L"null"));
        if (const long failure = Script("setCallback"); failure != 0) {
            return failure;
        }
        callback = newCallback;
        return S_OK;
    }

    // IVideoWindow
    STDMETHODIMP put_Owner(OAHWND owner) override {
        Record(kRecordCall, FormatText(L"put_Owner(%s)", owner != 0 ? L"window" : L"0"));
        return S_OK;
    }
    STDMETHODIMP put_MessageDrain(OAHWND drain) override {
        Record(kRecordCall, FormatText(L"put_MessageDrain(%s)", drain != 0 ? L"window" : L"0"));
        return S_OK;
    }
    STDMETHODIMP put_Visible(long visible) override {
        Record(kRecordCall, FormatText(L"put_Visible(%d)", visible));
        return S_OK;
    }
    STDMETHODIMP SetWindowPosition(long left, long top, long width, long height) override {
        Record(kRecordCall, FormatText(L"SetWindowPosition(%d, %d, %d, %d)", left, top, width, height));
        return Script("windowPosition");
    }
    FAKE_UNEXPECTED(HRESULT, put_Caption, BSTR)
    FAKE_UNEXPECTED(HRESULT, get_Caption, BSTR*)
    FAKE_UNEXPECTED(HRESULT, put_WindowStyle, long)
    FAKE_UNEXPECTED(HRESULT, get_WindowStyle, long*)
    FAKE_UNEXPECTED(HRESULT, put_WindowStyleEx, long)
    FAKE_UNEXPECTED(HRESULT, get_WindowStyleEx, long*)
    FAKE_UNEXPECTED(HRESULT, put_AutoShow, long)
    FAKE_UNEXPECTED(HRESULT, get_AutoShow, long*)
    FAKE_UNEXPECTED(HRESULT, put_WindowState, long)
    FAKE_UNEXPECTED(HRESULT, get_WindowState, long*)
    FAKE_UNEXPECTED(HRESULT, put_BackgroundPalette, long)
    FAKE_UNEXPECTED(HRESULT, get_BackgroundPalette, long*)
    FAKE_UNEXPECTED(HRESULT, get_Visible, long*)
    FAKE_UNEXPECTED(HRESULT, put_Left, long)
    FAKE_UNEXPECTED(HRESULT, get_Left, long*)
    FAKE_UNEXPECTED(HRESULT, put_Width, long)
    FAKE_UNEXPECTED(HRESULT, get_Width, long*)
    FAKE_UNEXPECTED(HRESULT, put_Top, long)
    FAKE_UNEXPECTED(HRESULT, get_Top, long*)
    FAKE_UNEXPECTED(HRESULT, put_Height, long)
    FAKE_UNEXPECTED(HRESULT, get_Height, long*)
    FAKE_UNEXPECTED(HRESULT, get_Owner, OAHWND*)
    FAKE_UNEXPECTED(HRESULT, get_MessageDrain, OAHWND*)
    FAKE_UNEXPECTED(HRESULT, get_BorderColor, long*)
    FAKE_UNEXPECTED(HRESULT, put_BorderColor, long)
    FAKE_UNEXPECTED(HRESULT, get_FullScreenMode, long*)
    FAKE_UNEXPECTED(HRESULT, put_FullScreenMode, long)
    FAKE_UNEXPECTED(HRESULT, SetWindowForeground, long)
    FAKE_UNEXPECTED(HRESULT, NotifyOwnerMessage, OAHWND, long, LONG_PTR, LONG_PTR)
    FAKE_UNEXPECTED(HRESULT, GetWindowPosition, long*, long*, long*, long*)
    FAKE_UNEXPECTED(HRESULT, GetMinIdealImageSize, long*, long*)
    FAKE_UNEXPECTED(HRESULT, GetMaxIdealImageSize, long*, long*)
    FAKE_UNEXPECTED(HRESULT, GetRestorePosition, long*, long*, long*, long*)
    FAKE_UNEXPECTED(HRESULT, HideCursor, long)
    FAKE_UNEXPECTED(HRESULT, IsCursorHidden, long*)

    // IBasicVideo
    STDMETHODIMP GetVideoSize(long* width, long* height) override {
        Record(kRecordQuery, L"GetVideoSize");
        if (Script("width") == 0) {
            return E_UNEXPECTED;
        }
        *width = Script("width");
        *height = Script("height");
        return S_OK;
    }
    STDMETHODIMP SetDestinationPosition(long left, long top, long width, long height) override {
        Record(kRecordCall, FormatText(L"SetDestinationPosition(%d, %d, %d, %d)", left, top, width, height));
        return S_OK;
    }
    FAKE_UNEXPECTED(HRESULT, get_AvgTimePerFrame, REFTIME*)
    FAKE_UNEXPECTED(HRESULT, get_BitRate, long*)
    FAKE_UNEXPECTED(HRESULT, get_BitErrorRate, long*)
    FAKE_UNEXPECTED(HRESULT, get_VideoWidth, long*)
    FAKE_UNEXPECTED(HRESULT, get_VideoHeight, long*)
    FAKE_UNEXPECTED(HRESULT, put_SourceLeft, long)
    FAKE_UNEXPECTED(HRESULT, get_SourceLeft, long*)
    FAKE_UNEXPECTED(HRESULT, put_SourceWidth, long)
    FAKE_UNEXPECTED(HRESULT, get_SourceWidth, long*)
    FAKE_UNEXPECTED(HRESULT, put_SourceTop, long)
    FAKE_UNEXPECTED(HRESULT, get_SourceTop, long*)
    FAKE_UNEXPECTED(HRESULT, put_SourceHeight, long)
    FAKE_UNEXPECTED(HRESULT, get_SourceHeight, long*)
    FAKE_UNEXPECTED(HRESULT, put_DestinationLeft, long)
    FAKE_UNEXPECTED(HRESULT, get_DestinationLeft, long*)
    FAKE_UNEXPECTED(HRESULT, put_DestinationWidth, long)
    FAKE_UNEXPECTED(HRESULT, get_DestinationWidth, long*)
    FAKE_UNEXPECTED(HRESULT, put_DestinationTop, long)
    FAKE_UNEXPECTED(HRESULT, get_DestinationTop, long*)
    FAKE_UNEXPECTED(HRESULT, put_DestinationHeight, long)
    FAKE_UNEXPECTED(HRESULT, get_DestinationHeight, long*)
    FAKE_UNEXPECTED(HRESULT, SetSourcePosition, long, long, long, long)
    FAKE_UNEXPECTED(HRESULT, GetSourcePosition, long*, long*, long*, long*)
    FAKE_UNEXPECTED(HRESULT, SetDefaultSourcePosition)
    FAKE_UNEXPECTED(HRESULT, GetDestinationPosition, long*, long*, long*, long*)
    FAKE_UNEXPECTED(HRESULT, SetDefaultDestinationPosition)
    FAKE_UNEXPECTED(HRESULT, GetVideoPaletteEntries, long, long, long*, long*)
    FAKE_UNEXPECTED(HRESULT, GetCurrentImage, long*, long*)
    FAKE_UNEXPECTED(HRESULT, IsUsingDefaultSource)
    FAKE_UNEXPECTED(HRESULT, IsUsingDefaultDestination)

    // IDispatch, the same for both of its heirs
    FAKE_UNEXPECTED(HRESULT, GetTypeInfoCount, UINT*)
    FAKE_UNEXPECTED(HRESULT, GetTypeInfo, UINT, LCID, ITypeInfo**)
    FAKE_UNEXPECTED(HRESULT, GetIDsOfNames, REFIID, LPOLESTR*, UINT, LCID, DISPID*)
    FAKE_UNEXPECTED(HRESULT, Invoke, DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*)

    // IMediaSeeking: says where it is, and leaves the rest to the source
    STDMETHODIMP IsFormatSupported(const GUID* format) override {
        return *format == TIME_FORMAT_MEDIA_TIME ? S_OK : S_FALSE;
    }
    STDMETHODIMP GetCurrentPosition(LONGLONG* position) override {
        Record(kRecordQuery, L"GetCurrentPosition");
        *position = LONGLONG{Script("positionMilliseconds")} * 10000;
        return Script("positionMilliseconds", -1) >= 0 ? S_OK : E_NOTIMPL;
    }
    STDMETHODIMP GetCapabilities(DWORD*) override { return E_NOTIMPL; }
    STDMETHODIMP CheckCapabilities(DWORD*) override { return E_NOTIMPL; }
    STDMETHODIMP QueryPreferredFormat(GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTimeFormat(GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP IsUsingTimeFormat(const GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP SetTimeFormat(const GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetDuration(LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP GetStopPosition(LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP ConvertTimeFormat(LONGLONG*, const GUID*, LONGLONG, const GUID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetPositions(LONGLONG*, DWORD, LONGLONG*, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetPositions(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP GetAvailable(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }
    STDMETHODIMP SetRate(double) override { return E_NOTIMPL; }
    STDMETHODIMP GetRate(double*) override { return E_NOTIMPL; }
    STDMETHODIMP GetPreroll(LONGLONG*) override { return E_NOTIMPL; }

protected:
    void* FindInterface(REFIID iid) override {
        if (iid == __uuidof(IExFilterConfig) && Script("noConfig") == 0) {
            return static_cast<IExFilterConfig*>(this);
        }
        if (iid == __uuidof(ISubRender11) && Script("noSubtitles") == 0) {
            return static_cast<ISubRender11*>(this);
        }
        if (iid == IID_IVideoWindow && Script("noVideoWindow") == 0) {
            return static_cast<IVideoWindow*>(this);
        }
        if (iid == IID_IBasicVideo) {
            return static_cast<IBasicVideo*>(this);
        }
        return iid == __uuidof(IMediaSeeking) ? static_cast<IMediaSeeking*>(this) : nullptr;
    }

private:
    static std::wstring Widen(LPCSTR text) { return std::wstring(text, text + std::strlen(text)); }

    ComPtr<ISubRender11Callback> callback;
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeVideoRenderer;
}

} // namespace brindlecast::testing

#include "base/win32/unique_handle.h"
#include "filters/include/mpc_video_renderer.h"
#include "tests/graph/fakes/fake_filter.h"

#include <control.h>
#include <uuids.h>

#include <algorithm>
#include <cstring>

// A video renderer without a picture. Its script besides that of every filter:
//   MpcVideoRenderer64.width, .height        the size of the video; 0 fails
//   MpcVideoRenderer64.positionMilliseconds  absent, it can't say
//   MpcVideoRenderer64.setInt, .setBool, .setCallback, .windowPosition   failures
//   MpcVideoRenderer64.makesWindow           1: it puts a window of its own into its owner
// Both of its pictures are bottom-up ones of one column and 32 bits:
//   MpcVideoRenderer64.displayedBytes, .currentBytes             sizes with the header; absent: none
//   MpcVideoRenderer64.getBin, .currentSize, .currentImage       failures

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
    STDMETHODIMP Flt_GetBin(LPCSTR field, LPVOID* value, unsigned* size) override {
        Record(kRecordCall, FormatText(L"Flt_GetBin(%s)", Widen(field)));
        if (const long failure = Script("getBin"); failure != 0) {
            return failure;
        }
        const std::vector<BYTE> image = Image("displayedDib", "displayedBytes");
        *size = static_cast<unsigned>(image.size());
        *value = CoTaskMemAlloc(image.size());
        std::ranges::copy(image, static_cast<BYTE*>(*value));
        return S_OK;
    }
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
        window.Reset();
        if (owner != 0 && Script("makesWindow") != 0) {
            // A button answers hit tests as a video window does.
            window.Reset(CreateWindowExW(0, L"BUTTON", L"", WS_CHILD | WS_VISIBLE, 0, 0, 2000, 2000,
                                         reinterpret_cast<HWND>(owner), nullptr, nullptr, nullptr));
        }
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
    STDMETHODIMP GetCurrentImage(long* size, long* image) override {
        Record(kRecordCall, image == nullptr ? L"GetCurrentImage(size)" : L"GetCurrentImage(image)");
        if (const long failure = Script(image == nullptr ? "currentSize" : "currentImage"); failure != 0) {
            return failure;
        }
        if (const long nonsense = Script("currentBytes"); nonsense < 0) {
            *size = nonsense;
            return S_OK;
        }
        const std::vector<BYTE> bytes = Image("currentDib", "currentBytes");
        if (image != nullptr) {
            std::memcpy(image, bytes.data(), std::min(static_cast<std::size_t>(*size), bytes.size()));
        }
        *size = static_cast<long>(bytes.size());
        return S_OK;
    }
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
        if (iid == __uuidof(IExFilterConfig)) {
            return Offer("noConfig", static_cast<IExFilterConfig*>(this));
        }
        if (iid == __uuidof(ISubRender11)) {
            return Offer("noSubtitles", static_cast<ISubRender11*>(this));
        }
        if (iid == IID_IVideoWindow) {
            return Offer("noVideoWindow", static_cast<IVideoWindow*>(this));
        }
        if (iid == IID_IBasicVideo) {
            return static_cast<IBasicVideo*>(this);
        }
        return iid == __uuidof(IMediaSeeking) ? static_cast<IMediaSeeking*>(this) : nullptr;
    }

private:
    // The scripted picture, or one column of the scripted size.
    std::vector<BYTE> Image(const char* dibKey, const char* bytesKey) const {
        if (const wchar_t* digits = ScriptText(dibKey); digits != nullptr) {
            return FromHexadecimal(digits);
        }
        std::vector<BYTE> image(static_cast<std::size_t>(Script(bytesKey)));
        FillImage(image.data(), image.size());
        return image;
    }
    static std::vector<BYTE> FromHexadecimal(const std::wstring& digits) {
        std::vector<BYTE> bytes;
        for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
            bytes.push_back(static_cast<BYTE>(std::stoul(digits.substr(i, 2), nullptr, 16)));
        }
        return bytes;
    }
    static void FillImage(BYTE* image, std::size_t size) {
        BITMAPINFOHEADER header{};
        header.biSize = sizeof(header);
        header.biWidth = 1;
        header.biHeight = static_cast<LONG>(size > sizeof(header) ? (size - sizeof(header)) / 4 : 0);
        header.biPlanes = 1;
        header.biBitCount = 32;
        std::memcpy(image, &header, std::min(size, sizeof(header)));
        for (std::size_t i = sizeof(header); i < size; ++i) {
            image[i] = static_cast<BYTE>(i);
        }
    }
    static std::wstring Widen(LPCSTR text) { return std::wstring(text, text + std::strlen(text)); }

    ComPtr<ISubRender11Callback> callback;
    UniqueHwnd window;
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeVideoRenderer;
}

} // namespace brindlecast::testing

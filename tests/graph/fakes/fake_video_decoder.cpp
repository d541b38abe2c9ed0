#include "filters/include/lav_video.h"
#include "tests/graph/fakes/fake_filter.h"

#include <oleauto.h>
#include <uuids.h>
#include <vfwmsgs.h>

#include <sstream>

// A video decoder. Its script besides that of every filter:
//   LAVVideo.supported           text of the hardware methods that it says it can use, "3,5"
//   LAVVideo.status              what it answers for those, 2 when absent
//   LAVVideo.devices             how many devices it has; the third has no name
//   LAVVideo.device1             the failure of asking for device 1
//   LAVVideo.refuseUnderMethod   the method under which it takes no connection
//   LAVVideo.pauseExceptMethod5  the failure of Pause under all others but D3D11
//   LAVVideo.decoderName         text, null when absent
//   LAVVideo.activeDevice        text; absent, it fails, or by LAVVideo.deviceIsNull hands nothing out
//   LAVVideo.inputs              how many input pins it has, 1 when absent

namespace brindlecast::testing {

const char* const kFakeName = "LAVVideo";
const CLSID kFakeClass = kClsidLavVideo;

namespace {

class FakeVideoDecoder final : public FakeFilter, public ILAVVideoSettings, public ILAVVideoStatus {
public:
    FakeVideoDecoder() : FakeFilter(L"LAVVideo", kFakeClass) {
        std::vector<FakeType> types;
        for (const wchar_t* code : {L"H264", L"HVC1", L"mp4v", L"XVID"}) {
            types.push_back({MEDIATYPE_Video, FourCcSubtype(code), GUID_NULL, {}});
        }
        for (long i = 0; i < Script("inputs", 1); ++i) {
            AddPin(L"Input", PINDIR_INPUT, types);
        }
        AddPin(L"Output", PINDIR_OUTPUT, {PlainVideoType()});
    }
    FAKE_UNKNOWN

    // ILAVVideoSettings
    STDMETHODIMP SetRuntimeConfig(BOOL value) override { return Set(L"SetRuntimeConfig(%d)", value); }
    STDMETHODIMP SetFormatConfiguration(int codec, BOOL value) override {
        return Set(L"SetFormatConfiguration(%d, %d)", codec, value);
    }
    STDMETHODIMP SetNumThreads(DWORD value) override { return Set(L"SetNumThreads(%u)", value); }
    STDMETHODIMP SetPixelFormat(int format, BOOL value) override {
        return Set(L"SetPixelFormat(%d, %d)", format, value);
    }
    STDMETHODIMP_(DWORD) CheckHWAccelSupport(int method) override {
        Record(kRecordCall, FormatText(L"CheckHWAccelSupport(%d)", method));
        const wchar_t* list = ScriptText("supported");
        std::wistringstream stream(list != nullptr ? list : L"0,1,2,3,4,5");
        for (std::wstring supported; std::getline(stream, supported, L',');) {
            if (!supported.empty() && std::stoi(supported) == method) {
                return static_cast<DWORD>(Script("status", 2));
            }
        }
        return 0;
    }
    STDMETHODIMP SetHWAccel(int method) override {
        hardwareMethod = method;
        return Set(L"SetHWAccel(%d)", method);
    }
    STDMETHODIMP SetHWAccelCodec(int codec, BOOL value) override {
        return Set(L"SetHWAccelCodec(%d, %d)", codec, value);
    }
    STDMETHODIMP SetHWAccelResolutionFlags(DWORD value) override {
        return Set(L"SetHWAccelResolutionFlags(%u)", value);
    }
    STDMETHODIMP SetTrayIcon(BOOL value) override { return Set(L"SetTrayIcon(%d)", value); }
    STDMETHODIMP SetDeinterlacingMode(int value) override { return Set(L"SetDeinterlacingMode(%d)", value); }
    STDMETHODIMP_(DWORD) GetHWAccelNumDevices(int method) override {
        Record(kRecordCall, FormatText(L"GetHWAccelNumDevices(%d)", method));
        return static_cast<DWORD>(Script("devices"));
    }
    STDMETHODIMP GetHWAccelDeviceInfo(int method, DWORD index, BSTR* name, DWORD* id) override {
        Record(kRecordCall, FormatText(L"GetHWAccelDeviceInfo(%d, %u)", method, index));
        const long failure = index == 1 ? Script("device1") : 0;
        if (failure != 0) {
            return failure;
        }
        // The third device has no name.
        *name = index == 2 ? nullptr : SysAllocString(FormatText(L"Adapter %u", index).c_str());
        *id = 0xA0 + index;
        return S_OK;
    }
    STDMETHODIMP_(DWORD) GetHWAccelDeviceIndex(int method, DWORD* id) override {
        Record(kRecordCall, FormatText(L"GetHWAccelDeviceIndex(%d)", method));
        *id = 0xBEEF;
        return 7;
    }
    FAKE_UNEXPECTED(BOOL, GetFormatConfiguration, int)
    FAKE_UNEXPECTED(DWORD, GetNumThreads)
    FAKE_UNEXPECTED(HRESULT, SetStreamAR, DWORD)
    FAKE_UNEXPECTED(DWORD, GetStreamAR)
    FAKE_UNEXPECTED(BOOL, GetPixelFormat, int)
    FAKE_UNEXPECTED(HRESULT, SetRGBOutputRange, DWORD)
    FAKE_UNEXPECTED(DWORD, GetRGBOutputRange)
    FAKE_UNEXPECTED(HRESULT, SetDeintFieldOrder, int)
    FAKE_UNEXPECTED(int, GetDeintFieldOrder)
    FAKE_UNEXPECTED(HRESULT, SetDeintAggressive, BOOL)
    FAKE_UNEXPECTED(BOOL, GetDeintAggressive)
    FAKE_UNEXPECTED(HRESULT, SetDeintForce, BOOL)
    FAKE_UNEXPECTED(BOOL, GetDeintForce)
    FAKE_UNEXPECTED(int, GetHWAccel)
    FAKE_UNEXPECTED(BOOL, GetHWAccelCodec, int)
    FAKE_UNEXPECTED(HRESULT, SetHWAccelDeintMode, int)
    FAKE_UNEXPECTED(int, GetHWAccelDeintMode)
    FAKE_UNEXPECTED(HRESULT, SetHWAccelDeintOutput, int)
    FAKE_UNEXPECTED(int, GetHWAccelDeintOutput)
    FAKE_UNEXPECTED(HRESULT, SetHWAccelDeintHQ, BOOL)
    FAKE_UNEXPECTED(BOOL, GetHWAccelDeintHQ)
    FAKE_UNEXPECTED(HRESULT, SetSWDeintMode, int)
    FAKE_UNEXPECTED(int, GetSWDeintMode)
    FAKE_UNEXPECTED(HRESULT, SetSWDeintOutput, int)
    FAKE_UNEXPECTED(int, GetSWDeintOutput)
    FAKE_UNEXPECTED(HRESULT, SetDeintTreatAsProgressive, BOOL)
    FAKE_UNEXPECTED(BOOL, GetDeintTreatAsProgressive)
    FAKE_UNEXPECTED(HRESULT, SetDitherMode, int)
    FAKE_UNEXPECTED(int, GetDitherMode)
    FAKE_UNEXPECTED(HRESULT, SetUseMSWMV9Decoder, BOOL)
    FAKE_UNEXPECTED(BOOL, GetUseMSWMV9Decoder)
    FAKE_UNEXPECTED(HRESULT, SetDVDVideoSupport, BOOL)
    FAKE_UNEXPECTED(BOOL, GetDVDVideoSupport)
    FAKE_UNEXPECTED(DWORD, GetHWAccelResolutionFlags)
    FAKE_UNEXPECTED(BOOL, GetTrayIcon)
    FAKE_UNEXPECTED(int, GetDeinterlacingMode)
    FAKE_UNEXPECTED(HRESULT, SetGPUDeviceIndex, DWORD)
    FAKE_UNEXPECTED(HRESULT, SetHWAccelDeviceIndex, int, DWORD, DWORD)
    FAKE_UNEXPECTED(HRESULT, SetH264MVCDecodingOverride, BOOL)
    FAKE_UNEXPECTED(HRESULT, SetEnableCCOutputPin, BOOL)

    // ILAVVideoStatus
    STDMETHODIMP_(LPCWSTR) GetActiveDecoderName() override {
        Record(kRecordQuery, L"GetActiveDecoderName");
        return ScriptText("decoderName");
    }
    STDMETHODIMP GetHWAccelActiveDevice(BSTR* device) override {
        Record(kRecordQuery, L"GetHWAccelActiveDevice");
        const wchar_t* name = ScriptText("activeDevice");
        *device = name != nullptr ? SysAllocString(name) : nullptr;
        return name != nullptr || Script("deviceIsNull") != 0 ? S_OK : E_FAIL;
    }

    long PauseFailure() const override {
        return hardwareMethod == 5 ? Script("pause") : Script("pauseExceptMethod5", Script("pause"));
    }
    long InputRefusal() const override {
        const bool refused = Script("refuseUnderMethod", -1) == hardwareMethod;
        return refused ? VFW_E_TYPE_NOT_ACCEPTED : Script("refuse");
    }

protected:
    void* FindInterface(REFIID iid) override {
        if (iid == __uuidof(ILAVVideoSettings)) {
            return Offer("noSettings", static_cast<ILAVVideoSettings*>(this));
        }
        if (iid == __uuidof(ILAVVideoStatus)) {
            return Offer("noStatus", static_cast<ILAVVideoStatus*>(this));
        }
        return nullptr;
    }

private:
    template <class... Values>
    HRESULT Set(const wchar_t* format, const Values&... values) {
        Record(kRecordCall, FormatText(format, values...));
        return Script("rejectSettings");
    }

    int hardwareMethod = 0;
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeVideoDecoder;
}

} // namespace brindlecast::testing

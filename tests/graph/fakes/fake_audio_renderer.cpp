#include "tests/graph/fakes/fake_filter.h"

#include <control.h>
#include <uuids.h>

// Stands in for the platform's sound renderer, so that the tests need no sound device and see the volume.

namespace brindlecast::testing {

const char* const kFakeName = "AudioRenderer";
const CLSID kFakeClass = CLSID_DSoundRender;

namespace {

class FakeAudioRenderer final : public FakeFilter, public IBasicAudio, public IAMFilterMiscFlags {
public:
    FakeAudioRenderer() : FakeFilter(L"AudioRenderer", kFakeClass) {
        AddPin(L"Input", PINDIR_INPUT, {PlainAudioType()});
    }
    FAKE_UNKNOWN

    // IBasicAudio
    STDMETHODIMP put_Volume(long volume) override {
        Record(kRecordCall, FormatText(L"put_Volume(%d)", volume));
        return Script("putVolume");
    }
    FAKE_UNEXPECTED(HRESULT, get_Volume, long*)
    FAKE_UNEXPECTED(HRESULT, put_Balance, long)
    FAKE_UNEXPECTED(HRESULT, get_Balance, long*)

    // IDispatch
    FAKE_UNEXPECTED(HRESULT, GetTypeInfoCount, UINT*)
    FAKE_UNEXPECTED(HRESULT, GetTypeInfo, UINT, LCID, ITypeInfo**)
    FAKE_UNEXPECTED(HRESULT, GetIDsOfNames, REFIID, LPOLESTR*, UINT, LCID, DISPID*)
    FAKE_UNEXPECTED(HRESULT, Invoke, DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*)

    // IAMFilterMiscFlags
    STDMETHODIMP_(ULONG) GetMiscFlags() override { return AM_FILTER_MISC_FLAGS_IS_RENDERER; }

protected:
    void* FindInterface(REFIID iid) override {
        if (iid == IID_IBasicAudio) {
            return static_cast<IBasicAudio*>(this);
        }
        return iid == __uuidof(IAMFilterMiscFlags) ? static_cast<IAMFilterMiscFlags*>(this) : nullptr;
    }
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeAudioRenderer;
}

} // namespace brindlecast::testing

#include "engine/stream_select.h"
#include "engine/subtitle_grabber.h"
#include "tests/graph/fakes/fake_filter.h"

// Stands in for the system's sample grabber where a test wants to see the calls and to let them fail.

namespace brindlecast::testing {

const char* const kFakeName = "SampleGrabber";
const CLSID kFakeClass = kClsidSampleGrabber;

namespace {

class FakeSampleGrabber final : public FakeFilter, public ISampleGrabber {
public:
    FakeSampleGrabber() : FakeFilter(L"SampleGrabber", kFakeClass) {
        AddPin(L"In", PINDIR_INPUT, {{kMajorTypeSubtitle, GUID_NULL, GUID_NULL, {}}});
        AddPin(L"Out", PINDIR_OUTPUT, {{kMajorTypeSubtitle, GUID_NULL, GUID_NULL, {}}});
    }
    FAKE_UNKNOWN

    // ISampleGrabber
    STDMETHODIMP SetMediaType(const AM_MEDIA_TYPE* type) override {
        AM_MEDIA_TYPE wanted{};
        wanted.majortype = kMajorTypeSubtitle;
        const bool isWanted = type->majortype == wanted.majortype && type->subtype == GUID_NULL &&
                              type->bFixedSizeSamples == FALSE && type->bTemporalCompression == FALSE &&
                              type->lSampleSize == 0 && type->formattype == GUID_NULL &&
                              type->pUnk == nullptr && type->cbFormat == 0 && type->pbFormat == nullptr;
        Record(kRecordCall, isWanted ? L"SetMediaType(subtitle and zeros)" : L"SetMediaType(?)");
        return Script("setMediaType");
    }
    STDMETHODIMP SetCallback(ISampleGrabberCB* newCallback, LONG method) override {
        Record(kRecordCall,
               FormatText(L"SetCallback(%s, %d)", newCallback != nullptr ? L"callback" : L"null", method));
        callback = newCallback;
        return Script("setCallback");
    }
    FAKE_UNEXPECTED(HRESULT, SetOneShot, WINBOOL)
    FAKE_UNEXPECTED(HRESULT, GetConnectedMediaType, AM_MEDIA_TYPE*)
    FAKE_UNEXPECTED(HRESULT, SetBufferSamples, WINBOOL)
    FAKE_UNEXPECTED(HRESULT, GetCurrentBuffer, LONG*, LONG*)
    FAKE_UNEXPECTED(HRESULT, GetCurrentSample, IMediaSample**)

protected:
    void* FindInterface(REFIID iid) override {
        return iid == __uuidof(ISampleGrabber) ? Offer("noGrabber", static_cast<ISampleGrabber*>(this))
                                               : nullptr;
    }

private:
    ComPtr<ISampleGrabberCB> callback;
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeSampleGrabber;
}

} // namespace brindlecast::testing

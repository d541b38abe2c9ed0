#pragma once

#include <windows.h>

#include <strmif.h>
#include <vfwmsgs.h>

#include <string>
#include <utility>
#include <vector>

namespace brindlecast::testing {

// A sample with these times and bytes, which notes in order what it is asked for. Lives as long as its owner.
class FakeSample final : public IMediaSample {
public:
    FakeSample(REFERENCE_TIME start, REFERENCE_TIME stop, std::vector<BYTE> content)
        : times(start, stop), bytes(std::move(content)), length(static_cast<long>(bytes.size())) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(IMediaSample)) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<IMediaSample*>(this);
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetPointer(BYTE** out) override {
        calls.emplace_back("GetPointer");
        if (FAILED(pointerResult)) {
            return pointerResult;
        }
        *out = pointerIsNull ? nullptr : bytes.data();
        return pointerResult;
    }
    STDMETHODIMP_(long) GetSize() override { return static_cast<long>(bytes.size()); }
    STDMETHODIMP GetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) override {
        calls.emplace_back("GetTime");
        if (SUCCEEDED(timeResult)) {
            *start = times.first;
            *stop = times.second;
        }
        return timeResult;
    }
    STDMETHODIMP SetTime(REFERENCE_TIME*, REFERENCE_TIME*) override { return E_NOTIMPL; }
    STDMETHODIMP IsSyncPoint() override { return S_OK; }
    STDMETHODIMP SetSyncPoint(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP IsPreroll() override { return S_FALSE; }
    STDMETHODIMP SetPreroll(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP_(long) GetActualDataLength() override {
        calls.emplace_back("GetActualDataLength");
        return length;
    }
    STDMETHODIMP SetActualDataLength(long) override { return E_NOTIMPL; }
    STDMETHODIMP GetMediaType(AM_MEDIA_TYPE** type) override {
        *type = nullptr;
        return S_FALSE;
    }
    STDMETHODIMP SetMediaType(AM_MEDIA_TYPE*) override { return E_NOTIMPL; }
    STDMETHODIMP IsDiscontinuity() override { return S_FALSE; }
    STDMETHODIMP SetDiscontinuity(BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP GetMediaTime(LONGLONG*, LONGLONG*) override { return VFW_E_MEDIA_TIME_NOT_SET; }
    STDMETHODIMP SetMediaTime(LONGLONG*, LONGLONG*) override { return E_NOTIMPL; }

    std::pair<REFERENCE_TIME, REFERENCE_TIME> times;
    std::vector<BYTE> bytes;
    long length; // what it says, at most the bytes that are there
    HRESULT timeResult = S_OK;
    HRESULT pointerResult = S_OK;
    bool pointerIsNull = false;
    std::vector<std::string> calls;
};

} // namespace brindlecast::testing

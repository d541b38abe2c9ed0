#pragma once

#include "base/win32/com_ptr.h"

#include <windows.h>

#include <control.h>

#include <atomic>

namespace brindlecast::testing {

// A graph's control whose Run fails, for the failures that Wine's graph keeps to itself: from paused it
// passes no filter's code on. All else goes to the real control.
class FailingControl final : public IMediaControl {
public:
    FailingControl(ComPtr<IMediaControl> theReal, HRESULT theFailure) : real(theReal), failure(theFailure) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override { return real->QueryInterface(iid, out); }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    STDMETHODIMP Run() override { return failure; }
    STDMETHODIMP Pause() override { return real->Pause(); }
    STDMETHODIMP Stop() override { return real->Stop(); }
    STDMETHODIMP GetState(LONG wait, OAFilterState* state) override { return real->GetState(wait, state); }
    STDMETHODIMP RenderFile(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP AddSourceFilter(BSTR, IDispatch**) override { return E_NOTIMPL; }
    STDMETHODIMP get_FilterCollection(IDispatch**) override { return E_NOTIMPL; }
    STDMETHODIMP get_RegFilterCollection(IDispatch**) override { return E_NOTIMPL; }
    STDMETHODIMP StopWhenReady() override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

private:
    std::atomic<ULONG> references{1};
    ComPtr<IMediaControl> real;
    HRESULT failure;
};

// Lets the next Run of this control fail.
inline void LetRunFail(ComPtr<IMediaControl>& control, HRESULT failure) {
    ComPtr<IMediaControl> failing;
    // Not Attach: that of the compiler's ComPtr adds a reference.
    *failing.ReleaseAndGetAddressOf() = new FailingControl(control, failure);
    control = failing;
}

} // namespace brindlecast::testing

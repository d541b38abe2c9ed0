#pragma once

#include "tests/graph/fakes/fake_types.h"

#include <windows.h>

#include <strmif.h>
#include <wrl/client.h>

#include <string>
#include <vector>

namespace brindlecast::testing {

using Microsoft::WRL::ComPtr;

class FakeFilter;

// A pin that connects when both sides know the type, and carries nothing. Lives as long as its filter. Keys
// of its filter's script:
//   connectedTo        what an unconnected pin answers when it is asked for its peer
//   refuseFrom         the name of the output pin that inputs refuse, the only one of that name
//   refuseTimes        how many connections the inputs refuse before they take one
//   refuseOutput       failure of connecting the outputs
// and for the engine alone, because the graph manager does not survive such answers:
//   queryPinInfo, queryDirection, connectionMediaType, enumMediaTypes   failures
//   unterminatedNames  the names fill their field to its last character
//   typesAreNull, typeIsNull, typesAreEndless    a success without an enumerator, without a type, without end
class FakePin final : public IPin {
public:
    FakePin(FakeFilter& theFilter, std::wstring theName, PIN_DIRECTION theDirection,
            std::vector<FakeType> theTypes)
        : filter(theFilter), name(std::move(theName)), direction(theDirection), types(std::move(theTypes)) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP Connect(IPin* receiver, const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP Disconnect() override;
    STDMETHODIMP ConnectedTo(IPin** pin) override;
    STDMETHODIMP ConnectionMediaType(AM_MEDIA_TYPE* type) override;
    STDMETHODIMP QueryPinInfo(PIN_INFO* info) override;
    STDMETHODIMP QueryDirection(PIN_DIRECTION* out) override;
    STDMETHODIMP QueryId(LPWSTR* id) override;
    STDMETHODIMP QueryAccept(const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP EnumMediaTypes(IEnumMediaTypes** out) override;
    STDMETHODIMP QueryInternalConnections(IPin** pins, ULONG* count) override;
    STDMETHODIMP EndOfStream() override { return S_OK; }
    STDMETHODIMP BeginFlush() override { return S_OK; }
    STDMETHODIMP EndFlush() override { return S_OK; }
    STDMETHODIMP NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return S_OK; }

    FakeFilter& filter;
    const std::wstring name;
    const PIN_DIRECTION direction;
    const std::vector<FakeType> types;
    ComPtr<IPin> peer;
    FakeType connectedType;

private:
    [[nodiscard]] HRESULT RefusalOf(IPin* connector) const;
};

} // namespace brindlecast::testing

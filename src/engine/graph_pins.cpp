#include "engine/graph_pins.h"

#include <vfwmsgs.h>

#include <iterator>

namespace brindlecast {

namespace {

// More than any filter has: an enumerator that goes on behind it has no end.
constexpr int kMostPins = 1024;

} // namespace

HRESULT ListPins(IBaseFilter* filter, PIN_DIRECTION direction, std::vector<ComPtr<IPin>>& pins) {
    pins.clear();
    ComPtr<IEnumPins> enumerator;
    const HRESULT result =
        Obtain(enumerator, [filter](IEnumPins** given) { return filter->EnumPins(given); });
    if (FAILED(result)) {
        return result;
    }
    for (int i = 0; i < kMostPins; ++i) {
        ComPtr<IPin> pin;
        if (Obtain(pin, [&](IPin** given) { return enumerator->Next(1, given, nullptr); }) != S_OK) {
            break;
        }
        PIN_DIRECTION pinDirection = PINDIR_INPUT;
        if (SUCCEEDED(pin->QueryDirection(&pinDirection)) && pinDirection == direction) {
            pins.push_back(pin);
        }
    }
    return S_OK;
}

bool IsUnconnected(IPin* pin) {
    ComPtr<IPin> peer;
    return pin->ConnectedTo(&peer) == VFW_E_NOT_CONNECTED;
}

std::wstring PinName(IPin* pin) {
    PIN_INFO info{};
    if (FAILED(pin->QueryPinInfo(&info))) {
        return {};
    }
    if (info.pFilter != nullptr) {
        info.pFilter->Release();
    }
    // Foreign filters may fill the whole field.
    info.achName[std::size(info.achName) - 1] = L'\0';
    return info.achName;
}

ComPtr<IPin> FindUnconnectedPin(IBaseFilter* filter, PIN_DIRECTION direction) {
    std::vector<ComPtr<IPin>> pins;
    if (filter == nullptr || FAILED(ListPins(filter, direction, pins))) {
        return nullptr;
    }
    for (const ComPtr<IPin>& pin : pins) {
        if (IsUnconnected(pin.Get())) {
            return pin;
        }
    }
    return nullptr;
}

void FreeMediaTypeContent(AM_MEDIA_TYPE& type) {
    CoTaskMemFree(type.pbFormat);
    type.pbFormat = nullptr;
    type.cbFormat = 0;
    if (type.pUnk != nullptr) {
        type.pUnk->Release();
        type.pUnk = nullptr;
    }
}

void MediaTypeDeleter::operator()(AM_MEDIA_TYPE* type) const {
    FreeMediaTypeContent(*type);
    CoTaskMemFree(type);
}

} // namespace brindlecast

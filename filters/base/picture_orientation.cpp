#include "filters/base/picture_orientation.h"

#include <wrl/client.h>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

int PictureRotationOf(IPin& peer) {
    PIN_INFO info{};
    if (FAILED(peer.QueryPinInfo(&info)) || info.pFilter == nullptr) {
        return 0;
    }
    ComPtr<IPictureOrientation> orientation;
    const HRESULT result = info.pFilter->QueryInterface(kIidPictureOrientation,
                                                        reinterpret_cast<void**>(orientation.GetAddressOf()));
    info.pFilter->Release();
    return SUCCEEDED(result) ? orientation->GetPictureRotation() : 0;
}

} // namespace brindlecast

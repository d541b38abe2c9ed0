#pragma once

#include "base/win32/com_ptr.h"

#include <windows.h>

#include <strmif.h>

#include <string>
#include <vector>

namespace brindlecast {

// The pins of a filter in one direction, in the filter's order; those behind its first 1024 pins are left
// out. A failed enumeration answers its code and no pin.
[[nodiscard]] HRESULT ListPins(IBaseFilter* filter, PIN_DIRECTION direction, std::vector<ComPtr<IPin>>& pins);

// True only when the pin itself says that it is not connected; any other answer counts as connected.
[[nodiscard]] bool IsUnconnected(IPin* pin);

// The pin's name, empty when it can't be had.
[[nodiscard]] std::wstring PinName(IPin* pin);

// The first unconnected pin of that direction, or null, also for a null filter.
[[nodiscard]] ComPtr<IPin> FindUnconnectedPin(IBaseFilter* filter, PIN_DIRECTION direction);

// Releases what a media type refers to, but not the record itself.
void FreeMediaTypeContent(AM_MEDIA_TYPE& type);

// Owner of a media type allocated by a filter.
struct MediaTypeDeleter {
    void operator()(AM_MEDIA_TYPE* type) const;
};

} // namespace brindlecast

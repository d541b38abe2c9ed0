#include "filters/renderer/basic_video.h"

#include "filters/renderer/dib.h"

#include <vfwmsgs.h>

#include <numeric>

namespace brindlecast {

namespace {

template <class Read>
HRESULT ReadRect(LONG* value, HRESULT known, const PictureRect& rect, Read&& read) {
    if (value == nullptr) {
        return E_POINTER;
    }
    if (SUCCEEDED(known)) {
        *value = read(rect);
    }
    return known;
}

HRESULT WriteRect(HRESULT known, const PictureRect& rect, LONG* left, LONG* top, LONG* width, LONG* height) {
    if (left == nullptr || top == nullptr || width == nullptr || height == nullptr) {
        return E_POINTER;
    }
    if (SUCCEEDED(known)) {
        *left = rect.left;
        *top = rect.top;
        *width = rect.Width();
        *height = rect.Height();
    }
    return known;
}

// Sums stay far from the limits of an int.
bool IsSane(LONG left, LONG top, LONG width, LONG height) {
    constexpr LONG kLimit = 1 << 20;
    return width > 0 && height > 0 && width <= kLimit && height <= kLimit && left >= -kLimit &&
           left <= kLimit && top >= -kLimit && top <= kLimit;
}

} // namespace

HRESULT BasicVideo::CurrentSource(PictureRect* source) const {
    const auto size = core.VideoSize();
    if (!size) {
        return VFW_E_NOT_CONNECTED;
    }
    *source = core.TheLook().Get().source.value_or(PictureRect{0, 0, size->width, size->height});
    return S_OK;
}

HRESULT BasicVideo::CurrentDestination(PictureRect* destination) const {
    if (!core.IsConnected()) {
        return VFW_E_NOT_CONNECTED;
    }
    const Look look = core.TheLook().Get();
    RECT client{};
    const HWND window = core.Window().Handle();
    if (!look.destination && window != nullptr) {
        GetClientRect(window, &client);
    }
    *destination = look.destination.value_or(PictureRect{0, 0, client.right, client.bottom});
    return S_OK;
}

template <class Change>
HRESULT BasicVideo::EditSource(Change&& change) {
    PictureRect rect;
    const HRESULT result = CurrentSource(&rect);
    if (FAILED(result)) {
        return result;
    }
    change(rect);
    return SetSourcePosition(rect.left, rect.top, rect.Width(), rect.Height());
}

template <class Change>
HRESULT BasicVideo::EditDestination(Change&& change) {
    PictureRect rect;
    const HRESULT result = CurrentDestination(&rect);
    if (FAILED(result)) {
        return result;
    }
    change(rect);
    return SetDestinationPosition(rect.left, rect.top, rect.Width(), rect.Height());
}

STDMETHODIMP BasicVideo::get_AvgTimePerFrame(REFTIME* seconds) {
    if (seconds == nullptr) {
        return E_POINTER;
    }
    const auto format = core.Format();
    if (!format) {
        return VFW_E_NOT_CONNECTED;
    }
    *seconds = static_cast<double>(format->frameDuration) / 10'000'000.0;
    return S_OK;
}

STDMETHODIMP BasicVideo::get_BitRate(LONG* rate) {
    if (rate == nullptr) {
        return E_POINTER;
    }
    if (!core.IsConnected()) {
        return VFW_E_NOT_CONNECTED;
    }
    *rate = 0; // pictures arrive decoded: the rate of the stream is not known here
    return S_OK;
}

STDMETHODIMP BasicVideo::get_BitErrorRate(LONG* rate) {
    return get_BitRate(rate);
}

STDMETHODIMP BasicVideo::get_VideoWidth(LONG* width) {
    LONG height = 0;
    return GetVideoSize(width, &height);
}

STDMETHODIMP BasicVideo::get_VideoHeight(LONG* height) {
    LONG width = 0;
    return GetVideoSize(&width, height);
}

STDMETHODIMP BasicVideo::put_SourceLeft(LONG left) {
    return EditSource([left](PictureRect& rect) {
        rect = {left, rect.top, left + rect.Width(), rect.bottom};
    });
}

STDMETHODIMP BasicVideo::get_SourceLeft(LONG* left) {
    PictureRect rect;
    return ReadRect(left, CurrentSource(&rect), rect, [](const PictureRect& r) { return r.left; });
}

STDMETHODIMP BasicVideo::put_SourceWidth(LONG width) {
    return EditSource([width](PictureRect& rect) { rect.right = rect.left + width; });
}

STDMETHODIMP BasicVideo::get_SourceWidth(LONG* width) {
    PictureRect rect;
    return ReadRect(width, CurrentSource(&rect), rect, [](const PictureRect& r) { return r.Width(); });
}

STDMETHODIMP BasicVideo::put_SourceTop(LONG top) {
    return EditSource([top](PictureRect& rect) { rect = {rect.left, top, rect.right, top + rect.Height()}; });
}

STDMETHODIMP BasicVideo::get_SourceTop(LONG* top) {
    PictureRect rect;
    return ReadRect(top, CurrentSource(&rect), rect, [](const PictureRect& r) { return r.top; });
}

STDMETHODIMP BasicVideo::put_SourceHeight(LONG height) {
    return EditSource([height](PictureRect& rect) { rect.bottom = rect.top + height; });
}

STDMETHODIMP BasicVideo::get_SourceHeight(LONG* height) {
    PictureRect rect;
    return ReadRect(height, CurrentSource(&rect), rect, [](const PictureRect& r) { return r.Height(); });
}

STDMETHODIMP BasicVideo::put_DestinationLeft(LONG left) {
    return EditDestination([left](PictureRect& rect) {
        rect = {left, rect.top, left + rect.Width(), rect.bottom};
    });
}

STDMETHODIMP BasicVideo::get_DestinationLeft(LONG* left) {
    PictureRect rect;
    return ReadRect(left, CurrentDestination(&rect), rect, [](const PictureRect& r) { return r.left; });
}

STDMETHODIMP BasicVideo::put_DestinationWidth(LONG width) {
    return EditDestination([width](PictureRect& rect) { rect.right = rect.left + width; });
}

STDMETHODIMP BasicVideo::get_DestinationWidth(LONG* width) {
    PictureRect rect;
    return ReadRect(width, CurrentDestination(&rect), rect, [](const PictureRect& r) { return r.Width(); });
}

STDMETHODIMP BasicVideo::put_DestinationTop(LONG top) {
    return EditDestination([top](PictureRect& rect) {
        rect = {rect.left, top, rect.right, top + rect.Height()};
    });
}

STDMETHODIMP BasicVideo::get_DestinationTop(LONG* top) {
    PictureRect rect;
    return ReadRect(top, CurrentDestination(&rect), rect, [](const PictureRect& r) { return r.top; });
}

STDMETHODIMP BasicVideo::put_DestinationHeight(LONG height) {
    return EditDestination([height](PictureRect& rect) { rect.bottom = rect.top + height; });
}

STDMETHODIMP BasicVideo::get_DestinationHeight(LONG* height) {
    PictureRect rect;
    return ReadRect(height, CurrentDestination(&rect), rect, [](const PictureRect& r) { return r.Height(); });
}

STDMETHODIMP BasicVideo::SetSourcePosition(LONG left, LONG top, LONG width, LONG height) {
    const auto size = core.VideoSize();
    if (!size) {
        return VFW_E_NOT_CONNECTED;
    }
    if (!IsSane(left, top, width, height) || left < 0 || top < 0 || left + width > size->width ||
        top + height > size->height) {
        return E_INVALIDARG;
    }
    core.TheLook().Edit([&](Look& look) { look.source = {left, top, left + width, top + height}; });
    core.Drawing().RequestRedraw();
    return S_OK;
}

STDMETHODIMP BasicVideo::GetSourcePosition(LONG* left, LONG* top, LONG* width, LONG* height) {
    PictureRect rect;
    return WriteRect(CurrentSource(&rect), rect, left, top, width, height);
}

STDMETHODIMP BasicVideo::SetDefaultSourcePosition() {
    if (!core.IsConnected()) {
        return VFW_E_NOT_CONNECTED;
    }
    core.TheLook().Edit([](Look& look) { look.source.reset(); });
    core.Drawing().RequestRedraw();
    return S_OK;
}

STDMETHODIMP BasicVideo::SetDestinationPosition(LONG left, LONG top, LONG width, LONG height) {
    if (!core.IsConnected()) {
        return VFW_E_NOT_CONNECTED;
    }
    if (!IsSane(left, top, width, height)) {
        return E_INVALIDARG;
    }
    core.TheLook().Edit([&](Look& look) { look.destination = {left, top, left + width, top + height}; });
    core.Drawing().RequestRedraw();
    return S_OK;
}

STDMETHODIMP BasicVideo::GetDestinationPosition(LONG* left, LONG* top, LONG* width, LONG* height) {
    PictureRect rect;
    return WriteRect(CurrentDestination(&rect), rect, left, top, width, height);
}

STDMETHODIMP BasicVideo::SetDefaultDestinationPosition() {
    if (!core.IsConnected()) {
        return VFW_E_NOT_CONNECTED;
    }
    core.TheLook().Edit([](Look& look) { look.destination.reset(); });
    core.Drawing().RequestRedraw();
    return S_OK;
}

STDMETHODIMP BasicVideo::GetVideoSize(LONG* width, LONG* height) {
    if (width == nullptr || height == nullptr) {
        return E_POINTER;
    }
    const auto size = core.VideoSize();
    if (!size) {
        return VFW_E_NOT_CONNECTED;
    }
    *width = size->width;
    *height = size->height;
    return S_OK;
}

STDMETHODIMP BasicVideo::GetVideoPaletteEntries(LONG, LONG, LONG* retrieved, LONG*) {
    if (retrieved == nullptr) {
        return E_POINTER;
    }
    *retrieved = 0;
    return VFW_E_NO_PALETTE_AVAILABLE;
}

STDMETHODIMP BasicVideo::GetCurrentImage(LONG* size, LONG* image) {
    if (size == nullptr) {
        return E_POINTER;
    }
    const auto videoSize = core.VideoSize();
    if (!videoSize) {
        return VFW_E_NOT_CONNECTED;
    }
    const std::size_t needed = DibBytes(*videoSize);
    if (image == nullptr) {
        *size = static_cast<LONG>(needed);
        return S_OK;
    }
    if (*size < 0 || static_cast<std::size_t>(*size) < needed) {
        return E_OUTOFMEMORY;
    }
    return Guarded([&]() -> HRESULT {
        CapturedImage captured;
        const HRESULT result = core.Drawing().Capture(FramePainter::CaptureKind::kPicture, &captured);
        if (FAILED(result)) {
            return result == E_ABORT ? E_UNEXPECTED : result;
        }
        // The picture's shape may have changed since the size was asked for.
        if (DibBytes(captured.size) > static_cast<std::size_t>(*size)) {
            return E_OUTOFMEMORY;
        }
        WriteDib(captured, image);
        *size = static_cast<LONG>(DibBytes(captured.size));
        return S_OK;
    });
}

STDMETHODIMP BasicVideo::IsUsingDefaultSource() {
    if (!core.IsConnected()) {
        return VFW_E_NOT_CONNECTED;
    }
    return core.TheLook().Get().source ? S_FALSE : S_OK;
}

STDMETHODIMP BasicVideo::IsUsingDefaultDestination() {
    if (!core.IsConnected()) {
        return VFW_E_NOT_CONNECTED;
    }
    return core.TheLook().Get().destination ? S_FALSE : S_OK;
}

STDMETHODIMP BasicVideo::GetPreferredAspectRatio(LONG* aspectX, LONG* aspectY) {
    LONG width = 0;
    LONG height = 0;
    if (aspectX == nullptr || aspectY == nullptr) {
        return E_POINTER;
    }
    const HRESULT result = GetVideoSize(&width, &height);
    if (SUCCEEDED(result)) {
        const LONG divisor = std::gcd(width, height);
        *aspectX = width / divisor;
        *aspectY = height / divisor;
    }
    return result;
}

} // namespace brindlecast

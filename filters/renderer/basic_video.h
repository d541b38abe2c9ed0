#pragma once

#include "filters/renderer/filter_part.h"
#include "filters/renderer/renderer_core.h"

#include <control.h>

namespace brindlecast {

// IBasicVideo2. Everything answers VFW_E_NOT_CONNECTED, and writes nothing, while the input is not
// connected.
class BasicVideo final : public DualFilterPart<IBasicVideo2> {
public:
    BasicVideo(BaseFilter& theFilter, RendererCore& theCore) : DualFilterPart(theFilter), core(theCore) {}

    STDMETHODIMP get_AvgTimePerFrame(REFTIME* seconds) override;
    STDMETHODIMP get_BitRate(LONG* rate) override;
    STDMETHODIMP get_BitErrorRate(LONG* rate) override;
    STDMETHODIMP get_VideoWidth(LONG* width) override;
    STDMETHODIMP get_VideoHeight(LONG* height) override;
    STDMETHODIMP put_SourceLeft(LONG left) override;
    STDMETHODIMP get_SourceLeft(LONG* left) override;
    STDMETHODIMP put_SourceWidth(LONG width) override;
    STDMETHODIMP get_SourceWidth(LONG* width) override;
    STDMETHODIMP put_SourceTop(LONG top) override;
    STDMETHODIMP get_SourceTop(LONG* top) override;
    STDMETHODIMP put_SourceHeight(LONG height) override;
    STDMETHODIMP get_SourceHeight(LONG* height) override;
    STDMETHODIMP put_DestinationLeft(LONG left) override;
    STDMETHODIMP get_DestinationLeft(LONG* left) override;
    STDMETHODIMP put_DestinationWidth(LONG width) override;
    STDMETHODIMP get_DestinationWidth(LONG* width) override;
    STDMETHODIMP put_DestinationTop(LONG top) override;
    STDMETHODIMP get_DestinationTop(LONG* top) override;
    STDMETHODIMP put_DestinationHeight(LONG height) override;
    STDMETHODIMP get_DestinationHeight(LONG* height) override;
    STDMETHODIMP SetSourcePosition(LONG left, LONG top, LONG width, LONG height) override;
    STDMETHODIMP GetSourcePosition(LONG* left, LONG* top, LONG* width, LONG* height) override;
    STDMETHODIMP SetDefaultSourcePosition() override;
    STDMETHODIMP SetDestinationPosition(LONG left, LONG top, LONG width, LONG height) override;
    STDMETHODIMP GetDestinationPosition(LONG* left, LONG* top, LONG* width, LONG* height) override;
    STDMETHODIMP SetDefaultDestinationPosition() override;
    STDMETHODIMP GetVideoSize(LONG* width, LONG* height) override;
    STDMETHODIMP GetVideoPaletteEntries(LONG start, LONG entries, LONG* retrieved, LONG* palette) override;
    // A 32-bit DIB of the last frame in its display size, bottom-up, without subtitles; also while playing.
    STDMETHODIMP GetCurrentImage(LONG* size, LONG* image) override;
    STDMETHODIMP IsUsingDefaultSource() override;
    STDMETHODIMP IsUsingDefaultDestination() override;
    STDMETHODIMP GetPreferredAspectRatio(LONG* aspectX, LONG* aspectY) override;

private:
    [[nodiscard]] HRESULT CurrentSource(PictureRect* source) const;
    [[nodiscard]] HRESULT CurrentDestination(PictureRect* destination) const;
    template <class Change>
    [[nodiscard]] HRESULT EditSource(Change&& change);
    template <class Change>
    [[nodiscard]] HRESULT EditDestination(Change&& change);

    RendererCore& core;
};

} // namespace brindlecast

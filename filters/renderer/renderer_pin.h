#pragma once

#include "filters/base/input_pin.h"
#include "filters/renderer/renderer_core.h"

namespace brindlecast {

// The renderer's input: makes pictures of samples and hands them to the drawing thread.
class RendererPin final : public InputPin {
public:
    RendererPin(BaseFilter& filter, RendererCore& theCore);

    STDMETHODIMP NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) override;
    STDMETHODIMP GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) override;

    HRESULT Activate() override;
    void Deactivate() override;

protected:
    std::vector<MediaType> PreferredTypes() override;
    HRESULT CheckType(const MediaType& type) override;
    HRESULT OnTypeAgreed(const MediaType& type) override;
    HRESULT OnConnected(IPin& peer) override;
    void OnDisconnected() override;
    HRESULT OnSample(IMediaSample& sample) override;
    HRESULT OnFormatChange(const MediaType& type) override;
    HRESULT OnEndOfStream() override;
    HRESULT OnBeginFlush() override;
    HRESULT OnEndFlush() override;
    HRESULT OnNewSegment(const Segment& segment) override;

private:
    [[nodiscard]] HRESULT MakePicture(IMediaSample& sample, const FrameTimes& times, PicturePtr* out) const;
    void ReadRotation(IMediaSample& sample);
    void TellSizeChange();

    RendererCore& core;
    PictureFormat agreedFormat;      // streaming thread; at connection the connecting one
    std::atomic<bool> copies{false}; // the allocator has too few buffers to keep any
    std::mutex receiving;            // held while a sample is taken
};

} // namespace brindlecast

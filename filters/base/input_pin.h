#pragma once

#include "filters/base/base_pin.h"

namespace brindlecast {

// A pin that receives. Checks state, flush and end of stream before a sample reaches the filter's OnSample.
class InputPin : public BasePin, public IMemInputPin {
public:
    BRINDLECAST_COM_METHODS

    STDMETHODIMP ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP EndOfStream() override;
    STDMETHODIMP BeginFlush() override;
    STDMETHODIMP EndFlush() override;
    STDMETHODIMP NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) override;
    // Quality messages that this filter makes go to its sink, else to the pin upstream.
    STDMETHODIMP Notify(IBaseFilter* sender, Quality quality) override;

    STDMETHODIMP GetAllocator(IMemAllocator** allocator) override;
    STDMETHODIMP NotifyAllocator(IMemAllocator* allocator, BOOL readOnly) override;
    STDMETHODIMP GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) override;
    STDMETHODIMP Receive(IMediaSample* sample) override;
    STDMETHODIMP ReceiveMultiple(IMediaSample** samples, LONG count, LONG* processed) override;
    STDMETHODIMP ReceiveCanBlock() override;

    HRESULT Activate() override;
    void Deactivate() override;

    [[nodiscard]] bool IsFlushing() const noexcept { return flushing.load(); }
    [[nodiscard]] bool SawEndOfStream() const noexcept { return endOfStream.load(); }

protected:
    InputPin(BaseFilter& filter, std::wstring name);

    [[nodiscard]] void* FindInterface(REFIID iid) noexcept override;
    [[nodiscard]] std::vector<MediaType> PreferredTypes() override { return {}; }
    void OnDisconnected() override;

    // A sample in an active, not flushing filter, on the upstream streaming thread. A format change that the
    // sample carries has been checked by CheckType and told by OnFormatChange before.
    virtual HRESULT OnSample(IMediaSample& sample) = 0;
    virtual HRESULT OnFormatChange(const MediaType& type) = 0;
    // End of the stream, on the streaming thread. Not called while flushing or stopped.
    virtual HRESULT OnEndOfStream() = 0;
    // Flush begins: end every wait of the streaming thread and pass it on. OnSample is refused from now on.
    virtual HRESULT OnBeginFlush() = 0;
    // Flush ends: wait until the streaming thread has left, drop what is held, pass it on.
    virtual HRESULT OnEndFlush() = 0;
    virtual HRESULT OnNewSegment(const Segment&) { return S_OK; }

private:
    [[nodiscard]] HRESULT CheckStreaming() const;

    std::atomic<bool> flushing{false};
    std::atomic<bool> endOfStream{false};
    std::atomic<bool> formatFailed{false};
    Microsoft::WRL::ComPtr<IMemAllocator> agreedAllocator; // under the state lock
};

} // namespace brindlecast

#pragma once

#include "filters/base/base_pin.h"

namespace brindlecast {

// A pin that delivers. Negotiates type and allocator when it connects; passes calls downstream.
class OutputPin : public BasePin {
public:
    STDMETHODIMP Connect(IPin* receiver, const AM_MEDIA_TYPE* type) override;

    HRESULT Activate() override;
    void Deactivate() override;

    // For the streaming thread. All answer VFW_E_NOT_CONNECTED without a connection.
    // Blocks until a buffer is free, or VFW_E_NOT_COMMITTED after Deactivate. `size` is what the caller will
    // write; the answer holds at least that much, else VFW_E_BUFFER_OVERFLOW from a foreign allocator.
    HRESULT GetBuffer(IMediaSample** sample, LONG size, DWORD flags = 0);
    // May block in the receiver. Anything but S_OK means: deliver no more until a flush or restart.
    HRESULT Deliver(IMediaSample* sample);
    HRESULT DeliverEndOfStream();
    HRESULT DeliverNewSegment(const Segment& segment);
    // From the thread that seeks or stops:
    HRESULT DeliverBeginFlush();
    HRESULT DeliverEndFlush();

    // Changes the format of an existing connection: asks the receiver's QueryAccept, makes buffers large
    // enough, and attaches the type to the next sample delivered. VFW_E_TYPE_NOT_ACCEPTED when the receiver
    // refuses. Streaming thread only.
    HRESULT ChangeType(const MediaType& type, LONG bufferSize);

protected:
    OutputPin(BaseFilter& filter, std::wstring name);

    // Number and size of buffers that the connection needs. State lock held; Type() is already agreed.
    [[nodiscard]] virtual ALLOCATOR_PROPERTIES BufferNeeds() = 0;
    // True to try the receiver's allocator before ours (for receivers whose buffers are worth having).
    [[nodiscard]] virtual bool PrefersReceiversAllocator() const { return false; }
    HRESULT OnConnected(IPin& receiver) override;
    void OnDisconnected() override;

private:
    struct Link {
        Microsoft::WRL::ComPtr<IMemInputPin> input;
        Microsoft::WRL::ComPtr<IMemAllocator> allocator;
    };

    HRESULT TryConnect(IPin& receiver, const MediaType& type);
    HRESULT TryReceiversTypes(IPin& receiver, const AM_MEDIA_TYPE* pattern);
    HRESULT Negotiate(IMemInputPin& input);
    HRESULT TryAllocator(IMemInputPin& input, IMemAllocator& allocator, const ALLOCATOR_PROPERTIES& needs);
    [[nodiscard]] Link CurrentLink();

    std::mutex linkLock; // leaf lock
    Link currentLink;
    std::atomic<bool> typePending{false};
};

} // namespace brindlecast

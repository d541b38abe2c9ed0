#pragma once

#include "filters/base/input_pin.h"
#include "filters/base/output_pin.h"

namespace brindlecast {

// A filter with one input and one output pin. Its output pin carries IMediaSeeking, which goes upstream.
//
// Process, Drain, Reset, OnSegment, OnStart and OnStop run one at a time under the streaming lock; those
// marked "connection" run under the state lock while stopped. CheckInput and CheckOutput may come from any
// thread at any time.
class TransformFilter : public BaseFilter {
public:
    STDMETHODIMP Stop() override;
    STDMETHODIMP Pause() override;

    ~TransformFilter() override;

    // Public for the pins only.
    virtual HRESULT CheckInput(const MediaType& type) = 0;
    // Connection: types for the output while the input has its present type, best first.
    virtual std::vector<MediaType> OutputTypes() = 0;
    virtual HRESULT CheckOutput(const MediaType& type) = 0;
    // Connection: buffers for the output; Output().Type() is agreed.
    virtual ALLOCATOR_PROPERTIES OutputBuffers() = 0;
    [[nodiscard]] virtual bool PrefersReceiversAllocator() const { return false; }

    // The input's type was agreed at connection, or changes in the stream (then on the streaming thread).
    virtual HRESULT OnInputType(const MediaType&) { return S_OK; }
    // Connection: the output's type was agreed.
    virtual HRESULT OnOutputType(const MediaType&) { return S_OK; }
    // Connection: the pins are connected, or no longer.
    virtual void OnInputDisconnected() {}
    virtual void OnOutputDisconnected() {}

    // One input sample. Returns S_OK to go on; anything else stops the sender. Leave early when IsFlushing.
    virtual HRESULT Process(IMediaSample& sample) = 0;
    // End of the stream: deliver what is still inside. EndOfStream is passed on afterwards.
    virtual HRESULT Drain() { return S_OK; }
    // Flush: drop what is inside.
    virtual void Reset() {}
    // A new segment; the default passes it on unchanged.
    virtual HRESULT OnSegment(const BasePin::Segment& segment) { return Output().DeliverNewSegment(segment); }
    // From stopped to paused with a connected input, and back to stopped.
    virtual HRESULT OnStart() { return S_OK; }
    virtual void OnStop() {}
    // Quality message from the renderer; the default passes it upstream.
    virtual HRESULT OnQuality(IBaseFilter* sender, Quality quality) {
        return Input().Notify(sender, quality);
    }

    [[nodiscard]] InputPin& Input() noexcept { return *inputPin; }
    [[nodiscard]] OutputPin& Output() noexcept { return *outputPin; }

protected:
    TransformFilter(const CLSID& theClsid, std::wstring inputName, std::wstring outputName);

    // True when waits and loops of the streaming thread should end.
    [[nodiscard]] bool IsFlushing() const noexcept {
        return inputPin->IsFlushing() || State() == State_Stopped;
    }
    // Held while Process and its like run. Take it to change from another thread what they use; never hold
    // it while waiting for something that a streaming thread does.
    [[nodiscard]] std::mutex& StreamingLock() noexcept { return streamingLock; }

private:
    class Inlet;
    class Outlet;

    std::mutex streamingLock;
    InputPin* inputPin = nullptr;   // owned by the list of pins
    OutputPin* outputPin = nullptr; // likewise
};

} // namespace brindlecast

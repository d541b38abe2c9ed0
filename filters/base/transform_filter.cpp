#include "filters/base/transform_filter.h"

#include "filters/base/upstream_seeking.h"

namespace brindlecast {

using Microsoft::WRL::ComPtr;

class TransformFilter::Inlet final : public InputPin {
public:
    Inlet(TransformFilter& theFilter, std::wstring name)
        : InputPin(theFilter, std::move(name)), filter(theFilter) {}

protected:
    HRESULT CheckType(const MediaType& type) override { return filter.CheckInput(type); }
    HRESULT OnTypeAgreed(const MediaType& type) override { return filter.OnInputType(type); }
    void OnDisconnected() override {
        filter.OnInputDisconnected();
        InputPin::OnDisconnected();
    }

    HRESULT OnSample(IMediaSample& sample) override {
        const std::lock_guard lock(filter.streamingLock);
        return filter.IsFlushing() ? S_FALSE : filter.Process(sample);
    }
    HRESULT OnFormatChange(const MediaType& type) override {
        const std::lock_guard lock(filter.streamingLock);
        return filter.OnInputType(type);
    }
    HRESULT OnEndOfStream() override {
        const std::lock_guard lock(filter.streamingLock);
        if (filter.IsFlushing()) {
            return S_FALSE;
        }
        // What is left inside may not come out any more; the end must reach the renderer all the same.
        const HRESULT drained = filter.Drain();
        const HRESULT passed = filter.outputPin->DeliverEndOfStream();
        return FAILED(passed) ? passed : drained;
    }
    HRESULT OnBeginFlush() override { return Optional(filter.outputPin->DeliverBeginFlush()); }
    HRESULT OnEndFlush() override {
        {
            const std::lock_guard lock(filter.streamingLock);
            filter.Reset();
        }
        return Optional(filter.outputPin->DeliverEndFlush());
    }
    HRESULT OnNewSegment(const Segment& segment) override {
        const std::lock_guard lock(filter.streamingLock);
        return Optional(filter.OnSegment(segment));
    }

private:
    // A transform whose output leads nowhere takes flushes and segments in silence.
    static HRESULT Optional(HRESULT result) { return result == VFW_E_NOT_CONNECTED ? S_OK : result; }

    TransformFilter& filter;
};

class TransformFilter::Outlet final : public OutputPin, public UpstreamSeeking {
public:
    Outlet(TransformFilter& theFilter, std::wstring name)
        : OutputPin(theFilter, std::move(name)), filter(theFilter) {}

    BRINDLECAST_COM_METHODS

    STDMETHODIMP Notify(IBaseFilter* sender, Quality quality) override {
        return Guarded([&] { return filter.OnQuality(sender, quality); });
    }

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IMediaSeeking ? static_cast<IMediaSeeking*>(this) : OutputPin::FindInterface(iid);
    }
    ComPtr<IPin> UpstreamPin() override { return filter.inputPin->Peer(); }

    std::vector<MediaType> PreferredTypes() override {
        return filter.inputPin->IsConnected() ? filter.OutputTypes() : std::vector<MediaType>();
    }
    HRESULT CheckType(const MediaType& type) override {
        return filter.inputPin->IsConnected() ? filter.CheckOutput(type) : VFW_E_NOT_CONNECTED;
    }
    HRESULT OnTypeAgreed(const MediaType& type) override { return filter.OnOutputType(type); }
    void OnDisconnected() override {
        filter.OnOutputDisconnected();
        OutputPin::OnDisconnected();
    }
    ALLOCATOR_PROPERTIES BufferNeeds() override { return filter.OutputBuffers(); }
    [[nodiscard]] bool PrefersReceiversAllocator() const override {
        return filter.PrefersReceiversAllocator();
    }

private:
    TransformFilter& filter;
};

TransformFilter::TransformFilter(const CLSID& theClsid, std::wstring inputName, std::wstring outputName)
    : BaseFilter(theClsid) {
    auto inlet = std::make_unique<Inlet>(*this, std::move(inputName));
    auto outlet = std::make_unique<Outlet>(*this, std::move(outputName));
    inputPin = inlet.get();
    outputPin = outlet.get();
    AddPin(std::move(inlet));
    AddPin(std::move(outlet));
}

TransformFilter::~TransformFilter() = default;

STDMETHODIMP TransformFilter::Stop() {
    return Guarded([&] {
        const std::lock_guard lock(StateLock());
        if (State() == State_Stopped) {
            return S_OK;
        }
        const HRESULT result = BaseFilter::Stop();
        if (!streamingLock.try_lock()) {
            // A streaming thread is inside, perhaps blocked in a receiver that still runs: a flush lets it
            // go.
            outputPin->DeliverBeginFlush();
            streamingLock.lock();
            outputPin->DeliverEndFlush();
        }
        const std::lock_guard streaming(streamingLock, std::adopt_lock);
        if (inputPin->IsConnected()) {
            OnStop();
        }
        return result;
    });
}

STDMETHODIMP TransformFilter::Pause() {
    return Guarded([&] {
        const std::lock_guard lock(StateLock());
        const bool starts = State() == State_Stopped && inputPin->IsConnected();
        if (starts) {
            const std::lock_guard streaming(streamingLock);
            const HRESULT result = OnStart();
            if (FAILED(result)) {
                return result;
            }
        }
        const HRESULT result = BaseFilter::Pause();
        if (FAILED(result) && starts) {
            const std::lock_guard streaming(streamingLock);
            OnStop();
        }
        return result;
    });
}

} // namespace brindlecast

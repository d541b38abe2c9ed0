#include "filters/base/transform_filter.h"

#include "filters/base/upstream_seeking.h"

namespace brindlecast {

using Microsoft::WRL::ComPtr;

class TransformFilter::Inlet final : public InputPin {
public:
    Inlet(TransformFilter& filter, std::wstring name) : InputPin(filter, std::move(name)), filter_(filter) {}

protected:
    HRESULT CheckType(const MediaType& type) override { return filter_.CheckInput(type); }
    HRESULT OnTypeAgreed(const MediaType& type) override { return filter_.OnInputType(type); }
    void OnDisconnected() override {
        filter_.OnInputDisconnected();
        InputPin::OnDisconnected();
    }

    HRESULT OnSample(IMediaSample& sample) override {
        const std::lock_guard lock(filter_.streamingLock_);
        return filter_.IsFlushing() ? S_FALSE : filter_.Process(sample);
    }
    HRESULT OnFormatChange(const MediaType& type) override {
        const std::lock_guard lock(filter_.streamingLock_);
        return filter_.OnInputType(type);
    }
    HRESULT OnEndOfStream() override {
        const std::lock_guard lock(filter_.streamingLock_);
        if (filter_.IsFlushing())
            return S_FALSE;
        // What is left inside may not come out any more; the end must reach the renderer all the same.
        const HRESULT drained = filter_.Drain();
        const HRESULT passed = filter_.output_->DeliverEndOfStream();
        return FAILED(passed) ? passed : drained;
    }
    HRESULT OnBeginFlush() override { return Optional(filter_.output_->DeliverBeginFlush()); }
    HRESULT OnEndFlush() override {
        {
            const std::lock_guard lock(filter_.streamingLock_);
            filter_.Reset();
        }
        return Optional(filter_.output_->DeliverEndFlush());
    }
    HRESULT OnNewSegment(const Segment& segment) override {
        const std::lock_guard lock(filter_.streamingLock_);
        return Optional(filter_.OnSegment(segment));
    }

private:
    // A transform whose output leads nowhere takes flushes and segments in silence.
    static HRESULT Optional(HRESULT result) { return result == VFW_E_NOT_CONNECTED ? S_OK : result; }

    TransformFilter& filter_;
};

class TransformFilter::Outlet final : public OutputPin, public UpstreamSeeking {
public:
    Outlet(TransformFilter& filter, std::wstring name)
        : OutputPin(filter, std::move(name)), filter_(filter) {}

    BRINDLECAST_COM_METHODS

    STDMETHODIMP Notify(IBaseFilter* sender, Quality quality) override {
        return Guarded([&] { return filter_.OnQuality(sender, quality); });
    }

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IMediaSeeking ? static_cast<IMediaSeeking*>(this) : OutputPin::FindInterface(iid);
    }
    ComPtr<IPin> UpstreamPin() override { return filter_.input_->Peer(); }

    std::vector<MediaType> PreferredTypes() override {
        return filter_.input_->IsConnected() ? filter_.OutputTypes() : std::vector<MediaType>();
    }
    HRESULT CheckType(const MediaType& type) override {
        return filter_.input_->IsConnected() ? filter_.CheckOutput(type) : VFW_E_NOT_CONNECTED;
    }
    HRESULT OnTypeAgreed(const MediaType& type) override { return filter_.OnOutputType(type); }
    void OnDisconnected() override {
        filter_.OnOutputDisconnected();
        OutputPin::OnDisconnected();
    }
    ALLOCATOR_PROPERTIES BufferNeeds() override { return filter_.OutputBuffers(); }
    bool PrefersReceiversAllocator() const override { return filter_.PrefersReceiversAllocator(); }

private:
    TransformFilter& filter_;
};

TransformFilter::TransformFilter(const CLSID& clsid, std::wstring inputName, std::wstring outputName)
    : BaseFilter(clsid) {
    auto inlet = std::make_unique<Inlet>(*this, std::move(inputName));
    auto outlet = std::make_unique<Outlet>(*this, std::move(outputName));
    input_ = inlet.get();
    output_ = outlet.get();
    AddPin(std::move(inlet));
    AddPin(std::move(outlet));
}

TransformFilter::~TransformFilter() = default;

STDMETHODIMP TransformFilter::Stop() {
    return Guarded([&] {
        const std::lock_guard lock(StateLock());
        if (State() == State_Stopped)
            return S_OK;
        const HRESULT result = BaseFilter::Stop();
        if (!streamingLock_.try_lock()) {
            // A streaming thread is inside, perhaps blocked in a receiver that still runs: a flush lets it
            // go.
            output_->DeliverBeginFlush();
            streamingLock_.lock();
            output_->DeliverEndFlush();
        }
        const std::lock_guard streaming(streamingLock_, std::adopt_lock);
        if (input_->IsConnected())
            OnStop();
        return result;
    });
}

STDMETHODIMP TransformFilter::Pause() {
    return Guarded([&] {
        const std::lock_guard lock(StateLock());
        const bool starts = State() == State_Stopped && input_->IsConnected();
        if (starts) {
            const std::lock_guard streaming(streamingLock_);
            const HRESULT result = OnStart();
            if (FAILED(result))
                return result;
        }
        const HRESULT result = BaseFilter::Pause();
        if (FAILED(result) && starts) {
            const std::lock_guard streaming(streamingLock_);
            OnStop();
        }
        return result;
    });
}

} // namespace brindlecast

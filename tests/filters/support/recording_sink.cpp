#include "tests/filters/support/recording_sink.h"

#include "filters/base/media_sample.h"

#include <algorithm>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

namespace {

constexpr CLSID kClsidRecordingSink = {
    0x6a3c1f10, 0x77de, 0x4b0a, {0x8e, 0x11, 0x42, 0x52, 0x54, 0x53, 0x4e, 0x4b}};

RecordingSink::Sample Describe(IMediaSample& sample, bool keepBytes) {
    RecordingSink::Sample copy;
    copy.arrived = std::chrono::steady_clock::now();
    REFERENCE_TIME start = 0;
    REFERENCE_TIME stop = 0;
    const HRESULT timed = sample.GetTime(&start, &stop);
    if (SUCCEEDED(timed))
        copy.start = start;
    if (timed == S_OK)
        copy.stop = stop;
    copy.syncPoint = sample.IsSyncPoint() == S_OK;
    copy.preroll = sample.IsPreroll() == S_OK;
    copy.discontinuity = sample.IsDiscontinuity() == S_OK;
    AM_MEDIA_TYPE* type = nullptr;
    copy.formatChange = sample.GetMediaType(&type) == S_OK;
    MediaType::FreeTaskMem(type);
    BYTE* data = nullptr;
    if (keepBytes && SUCCEEDED(sample.GetPointer(&data)) && data != nullptr)
        copy.bytes.assign(data, data + sample.GetActualDataLength());
    ComPtr<ISampleSideData> sideData;
    if (FAILED(sample.QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(sideData.GetAddressOf()))))
        return copy;
    for (ULONG i = 0; i < sideData->GetSideDataCount(); ++i) {
        GUID kind{};
        const BYTE* block = nullptr;
        ULONG size = 0;
        if (SUCCEEDED(sideData->GetSideDataKind(i, &kind)) &&
            SUCCEEDED(sideData->GetSideData(kind, &block, &size)))
            copy.sideData.emplace_back(kind, std::vector<BYTE>(block, block + size));
    }
    return copy;
}

} // namespace

class RecordingSink::Inlet final : public InputPin {
public:
    explicit Inlet(RecordingSink& sink) : InputPin(sink, L"In"), sink_(sink) {}

protected:
    HRESULT CheckType(const MediaType& type) override {
        if (type->majortype != sink_.majorType_)
            return VFW_E_TYPE_NOT_ACCEPTED;
        return !sink_.accepts_ || sink_.accepts_(type) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
    }
    bool ConnectsWhileActive() const override { return true; }
    HRESULT OnSample(IMediaSample& sample) override { return sink_.Take(sample); }
    HRESULT OnFormatChange(const MediaType&) override { return S_OK; }
    HRESULT OnEndOfStream() override {
        sink_.Write({Kind::EndOfStream, {}, {}, GetCurrentThreadId()});
        if (sink_.atEndOfStream_) {
            sink_.atEndOfStream_();
        }
        if (sink_.State() == State_Running)
            sink_.BaseFilter::Notify(EC_COMPLETE, S_OK,
                                     reinterpret_cast<LONG_PTR>(static_cast<IBaseFilter*>(&sink_)));
        return S_OK;
    }
    HRESULT OnBeginFlush() override {
        {
            const std::lock_guard lock(sink_.mutex_);
            sink_.flushing_ = true;
        }
        sink_.Write({Kind::BeginFlush, {}, {}, GetCurrentThreadId()});
        return S_OK;
    }
    HRESULT OnEndFlush() override {
        {
            const std::lock_guard lock(sink_.mutex_);
            sink_.flushing_ = false;
        }
        sink_.Write({Kind::EndFlush, {}, {}, GetCurrentThreadId()});
        return S_OK;
    }
    HRESULT OnNewSegment(const Segment& segment) override {
        sink_.Write({Kind::NewSegment, {}, segment, GetCurrentThreadId()});
        return S_OK;
    }

private:
    RecordingSink& sink_;
};

ComPtr<RecordingSink> RecordingSink::Create(const GUID& majorType,
                                            std::function<bool(const MediaType&)> accepts) {
    return AdoptReference(new RecordingSink(majorType, std::move(accepts)));
}

RecordingSink::RecordingSink(const GUID& majorType, std::function<bool(const MediaType&)> accepts)
    : BaseFilter(kClsidRecordingSink, AM_FILTER_MISC_FLAGS_IS_RENDERER), majorType_(majorType),
      accepts_(std::move(accepts)) {
    auto inlet = std::make_unique<Inlet>(*this);
    pin_ = inlet.get();
    AddPin(std::move(inlet));
}

RecordingSink::~RecordingSink() = default;

void* RecordingSink::FindInterface(REFIID iid) noexcept {
    return iid == IID_IMediaSeeking ? static_cast<IMediaSeeking*>(this) : BaseFilter::FindInterface(iid);
}

ComPtr<IPin> RecordingSink::UpstreamPin() {
    return pin_->Peer();
}

InputPin& RecordingSink::Pin() noexcept {
    return *pin_;
}

STDMETHODIMP RecordingSink::Stop() {
    const HRESULT result = BaseFilter::Stop();
    const std::lock_guard lock(mutex_);
    changed_.notify_all();
    return result;
}

STDMETHODIMP RecordingSink::Run(REFERENCE_TIME start) {
    const bool wasRunning = State() == State_Running;
    const HRESULT result = BaseFilter::Run(start);
    if (!wasRunning && (!pin_->IsConnected() || pin_->SawEndOfStream()))
        Notify(EC_COMPLETE, S_OK, reinterpret_cast<LONG_PTR>(static_cast<IBaseFilter*>(this)));
    return result;
}

HRESULT RecordingSink::Take(IMediaSample& sample) {
    {
        std::unique_lock lock(mutex_);
        blocking_ = block_;
        changed_.notify_all();
        changed_.wait(lock, [&] { return !block_ || flushing_ || State() == State_Stopped; });
        blocking_ = false;
        changed_.notify_all();
        if (flushing_ || State() == State_Stopped)
            return S_FALSE;
        if (refusal_ != S_OK)
            return refusal_;
    }
    Write({Kind::Sample, Describe(sample, keepBytes_), {}, GetCurrentThreadId()});
    return S_OK;
}

void RecordingSink::Write(Event event) {
    const std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
    changed_.notify_all();
}

void RecordingSink::Block(bool block) {
    const std::lock_guard lock(mutex_);
    block_ = block;
    changed_.notify_all();
}

void RecordingSink::Refuse(HRESULT result) {
    const std::lock_guard lock(mutex_);
    refusal_ = result;
}

std::vector<RecordingSink::Event> RecordingSink::Events() {
    const std::lock_guard lock(mutex_);
    return events_;
}

std::vector<RecordingSink::Sample> RecordingSink::SamplesOfSegment() {
    std::vector<Sample> samples;
    for (const Event& event : Events()) {
        if (event.kind == Kind::NewSegment || event.kind == Kind::EndFlush)
            samples.clear();
        else if (event.kind == Kind::Sample)
            samples.push_back(event.sample);
    }
    return samples;
}

std::vector<RecordingSink::Sample> RecordingSink::Samples() {
    std::vector<Sample> samples;
    for (const Event& event : Events()) {
        if (event.kind == Kind::Sample)
            samples.push_back(event.sample);
    }
    return samples;
}

std::size_t RecordingSink::Count(Kind kind) {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::count_if(events_.begin(), events_.end(),
                                                  [&](const Event& event) { return event.kind == kind; }));
}

void RecordingSink::Clear() {
    const std::lock_guard lock(mutex_);
    events_.clear();
}

bool RecordingSink::WaitFor(const std::function<bool(const std::vector<Event>&)>& done, int milliseconds) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), [&] { return done(events_); });
}

bool RecordingSink::WaitForCount(Kind kind, std::size_t count, int milliseconds) {
    return WaitFor(
        [&](const std::vector<Event>& events) {
            return static_cast<std::size_t>(
                       std::count_if(events.begin(), events.end(),
                                     [&](const Event& event) { return event.kind == kind; })) >= count;
        },
        milliseconds);
}

bool RecordingSink::IsBlocking() {
    const std::lock_guard lock(mutex_);
    return blocking_;
}

} // namespace brindlecast

#include "tests/filters/support/push_source.h"

#include "filters/base/media_sample.h"

#include <cstring>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

namespace {

constexpr CLSID kClsidPushSource = {
    0x6a3c1f11, 0x77de, 0x4b0a, {0x8e, 0x11, 0x42, 0x52, 0x54, 0x53, 0x52, 0x43}};

} // namespace

class PushSource::Outlet final : public OutputPin {
public:
    Outlet(PushSource& filter, std::vector<MediaType> types, LONG bufferSize, LONG bufferCount)
        : OutputPin(filter, L"Out"), types_(std::move(types)), needs_{bufferCount, bufferSize, 1, 0} {}

protected:
    std::vector<MediaType> PreferredTypes() override { return types_; }
    HRESULT CheckType(const MediaType& type) override {
        for (const MediaType& own : types_) {
            if (own == type)
                return S_OK;
        }
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    ALLOCATOR_PROPERTIES BufferNeeds() override { return needs_; }

private:
    const std::vector<MediaType> types_;
    const ALLOCATOR_PROPERTIES needs_;
};

ComPtr<PushSource> PushSource::Create(std::vector<MediaType> types, LONG bufferSize, LONG bufferCount) {
    return AdoptReference(new PushSource(std::move(types), bufferSize, bufferCount));
}

PushSource::PushSource(std::vector<MediaType> types, LONG bufferSize, LONG bufferCount)
    : BaseFilter(kClsidPushSource, AM_FILTER_MISC_FLAGS_IS_SOURCE) {
    auto outlet = std::make_unique<Outlet>(*this, std::move(types), bufferSize, bufferCount);
    pin_ = outlet.get();
    AddPin(std::move(outlet));
}

PushSource::~PushSource() = default;

OutputPin& PushSource::Pin() noexcept {
    return *pin_;
}

HRESULT PushSource::Push(const void* data, std::size_t size, const Options& options) {
    ComPtr<IMediaSample> sample;
    const HRESULT result = pin_->GetBuffer(sample.GetAddressOf(), static_cast<LONG>(size));
    if (FAILED(result))
        return result;
    BYTE* target = nullptr;
    sample->GetPointer(&target);
    if (size != 0)
        std::memcpy(target, data, size);
    sample->SetActualDataLength(static_cast<LONG>(size));
    if (options.start) {
        REFERENCE_TIME start = *options.start;
        REFERENCE_TIME stop = options.stop.value_or(0);
        sample->SetTime(&start, options.stop ? &stop : nullptr);
    }
    sample->SetSyncPoint(options.syncPoint);
    sample->SetPreroll(options.preroll);
    sample->SetDiscontinuity(options.discontinuity);
    if (options.formatChange != nullptr) {
        MediaType type = *options.formatChange;
        sample->SetMediaType(&type.Edit());
    }
    ComPtr<ISampleSideData> sideData;
    sample->QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(sideData.GetAddressOf()));
    for (const auto& [kind, bytes] : options.sideData) {
        if (sideData)
            sideData->SetSideData(kind, bytes.data(), static_cast<ULONG>(bytes.size()));
    }
    return pin_->Deliver(sample.Get());
}

void PushSource::FlushAndSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
    pin_->DeliverBeginFlush();
    pin_->DeliverEndFlush();
    pin_->DeliverNewSegment({start, stop, rate});
}

} // namespace brindlecast

#include "filters/splitter/splitter_pin.h"

#include "filters/base/media_sample.h"
#include "filters/base/stream_formats.h"
#include "filters/splitter/splitter_filter.h"

#include <algorithm>
#include <cstring>

extern "C" {
#include <libavcodec/packet.h>
}

namespace brindlecast {

using Microsoft::WRL::ComPtr;

namespace {

// Sound that ends this long before the segment still goes out: decoders need it to get going.
constexpr DemuxTime kSoundWarmUp = 800'000;
// How long Stop waits for a receiver to let go by itself, in milliseconds.
constexpr DWORD kPatience = 30;

const wchar_t* PinName(StreamKind kind) {
    switch (kind) {
    case StreamKind::Video: return L"Video";
    case StreamKind::Audio: return L"Audio";
    default: return L"Subtitle";
    }
}

// An apartment for the delivery thread, since receivers may use COM on it.
class ComApartment {
public:
    ComApartment() : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
    ~ComApartment() {
        if (entered_)
            CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

private:
    const bool entered_;
};

} // namespace

SplitterPin::SplitterPin(SplitterFilter& filter, StreamKind kind, int stream)
    : OutputPin(filter, PinName(kind)), SourceSeeking(static_cast<SeekTarget&>(filter)), filter_(filter),
      kind_(kind), stream_(stream), types_(filter.TypesOf(stream)) {}

SplitterPin::~SplitterPin() = default;

void* SplitterPin::FindInterface(REFIID iid) noexcept {
    return iid == IID_IMediaSeeking ? static_cast<IMediaSeeking*>(this) : OutputPin::FindInterface(iid);
}

std::vector<MediaType> SplitterPin::PreferredTypes() {
    const std::lock_guard lock(typesLock_);
    return types_;
}

HRESULT SplitterPin::CheckType(const MediaType& type) {
    const std::lock_guard lock(typesLock_);
    const bool offered = std::find(types_.begin(), types_.end(), type) != types_.end();
    return offered ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

ALLOCATOR_PROPERTIES SplitterPin::BufferNeeds() {
    // Our own buffers grow with the packet; for a receiver's allocator this is the largest packet to be
    // expected.
    constexpr LONG kBuffers = 8;
    constexpr LONG kSmall = 256 * 1024;
    LONG size = kSmall;
    const MediaType type = Type();
    if (const auto* header = type.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2)) {
        const LONGLONG pixels = static_cast<LONGLONG>(header->bmiHeader.biWidth) * header->bmiHeader.biHeight;
        size = static_cast<LONG>(std::clamp<LONGLONG>(pixels * 3 / 2, kSmall, 16 << 20));
    }
    return {kBuffers, size, 1, 0};
}

HRESULT SplitterPin::SetStream(int stream) {
    if (stream < 0 || stream == stream_) {
        stream_ = stream;
        return S_OK;
    }
    std::vector<MediaType> types = filter_.TypesOf(stream);
    if (types.empty())
        return VFW_E_TYPE_NOT_ACCEPTED;
    if (IsConnected() && !(types.front() == Type())) {
        const HRESULT result = ChangeType(types.front(), 0);
        if (FAILED(result))
            return result;
    }
    const std::lock_guard lock(typesLock_);
    types_ = std::move(types);
    stream_ = stream;
    return S_OK;
}

HRESULT SplitterPin::OnConnected(IPin& receiver) {
    HRESULT result = OutputPin::OnConnected(receiver);
    if (FAILED(result) || filter_.State() == State_Stopped)
        return result;
    result = Activate();
    if (SUCCEEDED(result))
        filter_.OnConnectedWhileActive(*this);
    return result;
}

void SplitterPin::OnDisconnected() {
    if (IsDelivering())
        filter_.OnDisconnectedWhileActive(*this);
    OutputPin::OnDisconnected();
}

void SplitterPin::StartDelivery(const Segment& segment) {
    running_ = segment;
    discontinuity_ = true;
    deliveredUpTo_ = segment.start;
    finished_.Clear();
    thread_ = std::thread([this] { Run(); });
}

void SplitterPin::StopDelivery(bool flush) {
    if (!thread_.joinable()) {
        if (flush && IsConnected()) {
            DeliverBeginFlush();
            DeliverEndFlush();
        }
        return;
    }
    if (!flush && !finished_.Wait(kPatience))
        flush = true; // blocked in a receiver that still runs
    if (flush)
        DeliverBeginFlush();
    thread_.join();
    thread_ = std::thread();
    if (flush)
        DeliverEndFlush();
}

void SplitterPin::Run() noexcept {
    const ComApartment apartment;
    try {
        DeliverPackets();
    } catch (...) {
        filter_.Queues().Abandon(kind_);
        ReportFailure(E_OUTOFMEMORY);
    }
    finished_.Set();
}

void SplitterPin::DeliverPackets() {
    DeliverNewSegment(running_);
    for (;;) {
        SharedPacket packet;
        const PacketQueues::PopResult popped = filter_.Queues().Pop(kind_, packet);
        if (popped == PacketQueues::PopResult::Closed)
            return;
        const Outcome outcome =
            popped == PacketQueues::PopResult::End ? Outcome::End : DeliverPacket(*packet);
        filter_.OnDelivered();
        if (outcome == Outcome::End) {
            filter_.Queues().Abandon(kind_);
            DeliverEndOfStream();
            return;
        }
        // A receiver of subtitles may refuse some: nothing depends on it.
        if (outcome == Outcome::Refused && kind_ != StreamKind::Subtitle) {
            filter_.Queues().Abandon(kind_);
            ReportFailure(refusal_);
            return;
        }
    }
}

// Whether a packet goes out at all: sound and subtitles from before the segment do not, nothing from behind
// it does.
SplitterPin::Outcome SplitterPin::Judge(const DemuxPacket& packet) const {
    if (!packet.start)
        return Outcome::Delivered;
    const DemuxTime end = *packet.start + packet.duration;
    if (kind_ == StreamKind::Audio && end <= running_.start - kSoundWarmUp)
        return Outcome::Skipped;
    if (kind_ == StreamKind::Subtitle && packet.duration > 0 && end <= running_.start)
        return Outcome::Skipped;
    if (*packet.start < running_.stop)
        return Outcome::Delivered;
    // Pictures come in decoding order: what follows may be shown earlier, until the next keyframe.
    return kind_ == StreamKind::Video && !packet.keyframe ? Outcome::Skipped : Outcome::End;
}

SplitterPin::Outcome SplitterPin::DeliverPacket(const DemuxPacket& packet) {
    const Outcome judged = Judge(packet);
    if (judged != Outcome::Delivered)
        return judged;
    ComPtr<IMediaSample> sample;
    refusal_ = GetBuffer(sample.GetAddressOf(), static_cast<LONG>(packet.Bytes()));
    if (SUCCEEDED(refusal_))
        refusal_ = Fill(*sample.Get(), packet);
    if (SUCCEEDED(refusal_))
        refusal_ = Deliver(sample.Get());
    if (refusal_ != S_OK)
        return Outcome::Refused;
    discontinuity_ = false;
    if (packet.start)
        deliveredUpTo_ = *packet.start + packet.duration;
    return Outcome::Delivered;
}

HRESULT SplitterPin::Fill(IMediaSample& sample, const DemuxPacket& packet) {
    BYTE* target = nullptr;
    HRESULT result = sample.GetPointer(&target);
    if (FAILED(result))
        return result;
    if (packet.Bytes() != 0)
        std::memcpy(target, packet.data->data, packet.Bytes());
    result = sample.SetActualDataLength(static_cast<LONG>(packet.Bytes()));
    if (FAILED(result))
        return result;
    SetSampleTime(sample, packet);
    sample.SetSyncPoint(packet.keyframe);
    sample.SetDiscontinuity(discontinuity_);
    AttachSideData(sample, packet);
    return S_OK;
}

void SplitterPin::SetSampleTime(IMediaSample& sample, const DemuxPacket& packet) const {
    if (!packet.start) {
        sample.SetTime(nullptr, nullptr);
        sample.SetPreroll(packet.discard);
        return;
    }
    const auto scaled = [&](DemuxTime time) {
        const DemuxTime inSegment = time - running_.start;
        return running_.rate == 1.0 ? inSegment
                                    : static_cast<DemuxTime>(static_cast<double>(inSegment) / running_.rate);
    };
    const DemuxTime end = *packet.start + packet.duration;
    REFERENCE_TIME start = scaled(*packet.start);
    REFERENCE_TIME stop = scaled(end);
    sample.SetTime(&start, packet.duration > 0 ? &stop : nullptr);
    const bool before = packet.duration > 0 ? end <= running_.start : *packet.start < running_.start;
    sample.SetPreroll(before || packet.discard);
}

void SplitterPin::AttachSideData(IMediaSample& sample, const DemuxPacket& packet) const {
    const DemuxStream& stream = filter_.StreamAt(packet.stream);
    if (stream.sideData.empty() && packet.data->side_data_elems == 0)
        return;
    ComPtr<ISampleSideData> sideData;
    if (FAILED(sample.QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(sideData.GetAddressOf()))))
        return;
    for (const auto& [type, bytes] : stream.sideData)
        sideData->SetSideData(PacketSideDataKind(type), bytes.data(), static_cast<ULONG>(bytes.size()));
    for (int i = 0; i < packet.data->side_data_elems; ++i) {
        const AVPacketSideData& block = packet.data->side_data[i];
        sideData->SetSideData(PacketSideDataKind(block.type), block.data, static_cast<ULONG>(block.size));
    }
}

// The receiver takes no more. That is its right when it answers S_FALSE or has been stopped; anything else
// breaks playback, and the application must hear of it.
void SplitterPin::ReportFailure(HRESULT result) {
    const bool expected = result == S_FALSE || result == VFW_E_WRONG_STATE || result == VFW_E_NOT_COMMITTED ||
                          result == VFW_E_NOT_CONNECTED || result == VFW_E_SAMPLE_REJECTED_EOS;
    if (expected || filter_.State() == State_Stopped || kind_ == StreamKind::Subtitle)
        return;
    filter_.BaseFilter::Notify(EC_ERRORABORT, result, 0);
    DeliverEndOfStream();
}

} // namespace brindlecast

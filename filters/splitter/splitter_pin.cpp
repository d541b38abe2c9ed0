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
    ComApartment() : entered(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
    ~ComApartment() {
        if (entered) {
            CoUninitialize();
        }
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

private:
    const bool entered;
};

} // namespace

SplitterPin::SplitterPin(SplitterFilter& theFilter, StreamKind theKind, int stream)
    : OutputPin(theFilter, PinName(theKind)), SourceSeeking(static_cast<SeekTarget&>(theFilter)),
      filter(theFilter), kind(theKind), currentStream(stream), streamTypes(theFilter.TypesOf(stream)) {}

SplitterPin::~SplitterPin() = default;

void* SplitterPin::FindInterface(REFIID iid) noexcept {
    return iid == IID_IMediaSeeking ? static_cast<IMediaSeeking*>(this) : OutputPin::FindInterface(iid);
}

std::vector<MediaType> SplitterPin::PreferredTypes() {
    const std::lock_guard lock(typesLock);
    return streamTypes;
}

HRESULT SplitterPin::CheckType(const MediaType& type) {
    const std::lock_guard lock(typesLock);
    const bool offered = std::find(streamTypes.begin(), streamTypes.end(), type) != streamTypes.end();
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
    if (stream < 0 || stream == currentStream) {
        currentStream = stream;
        return S_OK;
    }
    std::vector<MediaType> types = filter.TypesOf(stream);
    if (types.empty()) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    if (IsConnected() && !(types.front() == Type())) {
        const HRESULT result = ChangeType(types.front(), 0);
        if (FAILED(result)) {
            return result;
        }
    }
    const std::lock_guard lock(typesLock);
    streamTypes = std::move(types);
    currentStream = stream;
    return S_OK;
}

HRESULT SplitterPin::OnConnected(IPin& receiver) {
    HRESULT result = OutputPin::OnConnected(receiver);
    if (FAILED(result) || filter.State() == State_Stopped) {
        return result;
    }
    result = Activate();
    if (SUCCEEDED(result)) {
        filter.OnConnectedWhileActive(*this);
    }
    return result;
}

void SplitterPin::OnDisconnected() {
    if (IsDelivering()) {
        filter.OnDisconnectedWhileActive(*this);
    }
    OutputPin::OnDisconnected();
}

void SplitterPin::StartDelivery(const Segment& segment) {
    running = segment;
    discontinuity = true;
    deliveredUpTo = segment.start;
    finished.Clear();
    thread = std::thread([this] { Run(); });
}

void SplitterPin::StopDelivery(bool flush) {
    if (!thread.joinable()) {
        if (flush && IsConnected()) {
            DeliverBeginFlush();
            DeliverEndFlush();
        }
        return;
    }
    if (!flush && !finished.Wait(kPatience)) {
        flush = true; // blocked in a receiver that still runs
    }
    if (flush) {
        DeliverBeginFlush();
    }
    thread.join();
    thread = std::thread();
    if (flush) {
        DeliverEndFlush();
    }
}

void SplitterPin::Run() noexcept {
    const ComApartment apartment;
    try {
        DeliverPackets();
    } catch (...) {
        filter.Queues().Abandon(kind);
        ReportFailure(E_OUTOFMEMORY);
    }
    finished.Set();
}

void SplitterPin::DeliverPackets() {
    DeliverNewSegment(running);
    for (;;) {
        SharedPacket packet;
        const PacketQueues::PopResult popped = filter.Queues().Pop(kind, packet);
        if (popped == PacketQueues::PopResult::Closed) {
            return;
        }
        const Outcome outcome =
            popped == PacketQueues::PopResult::End ? Outcome::End : DeliverPacket(*packet);
        filter.OnDelivered();
        if (outcome == Outcome::End) {
            filter.Queues().Abandon(kind);
            DeliverEndOfStream();
            return;
        }
        // A receiver of subtitles may refuse some: nothing depends on it.
        if (outcome == Outcome::Refused && kind != StreamKind::Subtitle) {
            filter.Queues().Abandon(kind);
            ReportFailure(refusal);
            return;
        }
    }
}

// Whether a packet goes out at all: sound and subtitles from before the segment do not, nothing from behind
// it does.
SplitterPin::Outcome SplitterPin::Judge(const DemuxPacket& packet) const {
    if (!packet.start) {
        return Outcome::Delivered;
    }
    const DemuxTime end = *packet.start + packet.duration;
    if (kind == StreamKind::Audio && end <= running.start - kSoundWarmUp) {
        return Outcome::Skipped;
    }
    if (kind == StreamKind::Subtitle && packet.duration > 0 && end <= running.start) {
        return Outcome::Skipped;
    }
    if (*packet.start < running.stop) {
        return Outcome::Delivered;
    }
    // Pictures come in decoding order: what follows may be shown earlier, until the next keyframe.
    return kind == StreamKind::Video && !packet.keyframe ? Outcome::Skipped : Outcome::End;
}

SplitterPin::Outcome SplitterPin::DeliverPacket(const DemuxPacket& packet) {
    const Outcome judged = Judge(packet);
    if (judged != Outcome::Delivered) {
        return judged;
    }
    ComPtr<IMediaSample> sample;
    refusal = GetBuffer(sample.GetAddressOf(), static_cast<LONG>(packet.Bytes()));
    if (SUCCEEDED(refusal)) {
        refusal = Fill(*sample.Get(), packet);
    }
    if (SUCCEEDED(refusal)) {
        refusal = Deliver(sample.Get());
    }
    if (refusal != S_OK) {
        return Outcome::Refused;
    }
    discontinuity = false;
    if (packet.start) {
        deliveredUpTo = *packet.start + packet.duration;
    }
    return Outcome::Delivered;
}

HRESULT SplitterPin::Fill(IMediaSample& sample, const DemuxPacket& packet) {
    BYTE* target = nullptr;
    HRESULT result = sample.GetPointer(&target);
    if (FAILED(result)) {
        return result;
    }
    if (packet.Bytes() != 0) {
        std::memcpy(target, packet.data->data, packet.Bytes());
    }
    result = sample.SetActualDataLength(static_cast<LONG>(packet.Bytes()));
    if (FAILED(result)) {
        return result;
    }
    SetSampleTime(sample, packet);
    sample.SetSyncPoint(packet.keyframe);
    sample.SetDiscontinuity(discontinuity);
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
        const DemuxTime inSegment = time - running.start;
        return running.rate == 1.0 ? inSegment
                                   : static_cast<DemuxTime>(static_cast<double>(inSegment) / running.rate);
    };
    const DemuxTime end = *packet.start + packet.duration;
    REFERENCE_TIME start = scaled(*packet.start);
    REFERENCE_TIME stop = scaled(end);
    sample.SetTime(&start, packet.duration > 0 ? &stop : nullptr);
    const bool before = packet.duration > 0 ? end <= running.start : *packet.start < running.start;
    sample.SetPreroll(before || packet.discard);
}

void SplitterPin::AttachSideData(IMediaSample& sample, const DemuxPacket& packet) const {
    const DemuxStream& stream = filter.StreamAt(packet.stream);
    if (stream.sideData.empty() && packet.data->side_data_elems == 0) {
        return;
    }
    ComPtr<ISampleSideData> sideData;
    if (FAILED(
            sample.QueryInterface(kIidSampleSideData, reinterpret_cast<void**>(sideData.GetAddressOf())))) {
        return;
    }
    for (const auto& [type, bytes] : stream.sideData) {
        sideData->SetSideData(PacketSideDataKind(type), bytes.data(), static_cast<ULONG>(bytes.size()));
    }
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
    if (expected || filter.State() == State_Stopped || kind == StreamKind::Subtitle) {
        return;
    }
    filter.BaseFilter::Notify(EC_ERRORABORT, result, 0);
    DeliverEndOfStream();
}

} // namespace brindlecast

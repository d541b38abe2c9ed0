#pragma once

#include "filters/base/output_pin.h"
#include "filters/base/unique_handle.h"
#include "filters/core/demux_queue.h"
#include "filters/splitter/source_seeking.h"

#include <thread>

namespace brindlecast {

class SplitterFilter;

// One output pin of the splitter, with its delivery thread. Control calls hold the filter's state lock; the
// thread takes packets from the filter's queues and never takes that lock.
class SplitterPin final : public OutputPin, public SourceSeeking {
public:
    SplitterPin(SplitterFilter& theFilter, StreamKind theKind, int stream);
    ~SplitterPin() override;

    BRINDLECAST_COM_METHODS

    [[nodiscard]] StreamKind Kind() const noexcept { return kind; }
    // Position in the list of streams, -1 when its delivery is switched off.
    [[nodiscard]] int Stream() const noexcept { return currentStream; }
    // The stream that the pin stands for from now on. Its delivery must be stopped. A connected pin asks its
    // receiver first and fails with VFW_E_TYPE_NOT_ACCEPTED when that refuses. -1 switches off and leaves
    // the type.
    HRESULT SetStream(int stream);

    // Starts the thread: a new segment, then samples with discontinuity. The queue's reader must be open.
    void StartDelivery(const Segment& segment);
    // Waits for the thread. Its reader must be closed first. With `flush` the receiver is flushed around it;
    // without, only if the thread does not come out by itself.
    void StopDelivery(bool flush);
    [[nodiscard]] bool IsDelivering() const noexcept { return thread.joinable(); }
    // End of the last packet delivered, in media time.
    [[nodiscard]] DemuxTime DeliveredUpTo() const noexcept { return deliveredUpTo.load(); }

protected:
    void* FindInterface(REFIID iid) noexcept override;
    std::vector<MediaType> PreferredTypes() override;
    HRESULT CheckType(const MediaType& type) override;
    ALLOCATOR_PROPERTIES BufferNeeds() override;
    [[nodiscard]] bool ConnectsWhileActive() const override { return kind == StreamKind::Subtitle; }
    HRESULT OnConnected(IPin& receiver) override;
    void OnDisconnected() override;

private:
    enum class Outcome { Delivered, Skipped, End, Refused };

    void Run() noexcept;
    void DeliverPackets();
    Outcome DeliverPacket(const DemuxPacket& packet);
    [[nodiscard]] Outcome Judge(const DemuxPacket& packet) const;
    HRESULT Fill(IMediaSample& sample, const DemuxPacket& packet);
    void SetSampleTime(IMediaSample& sample, const DemuxPacket& packet) const;
    void AttachSideData(IMediaSample& sample, const DemuxPacket& packet) const;
    void ReportFailure(HRESULT result);

    SplitterFilter& filter;
    const StreamKind kind;
    int currentStream;
    std::mutex typesLock; // leaf lock: QueryAccept comes from any thread
    std::vector<MediaType> streamTypes;

    std::thread thread;
    Event finished{Event::Reset::Manual, true};
    Segment running; // the thread's segment
    bool discontinuity = false;
    HRESULT refusal = S_OK;
    std::atomic<DemuxTime> deliveredUpTo{0};
};

} // namespace brindlecast

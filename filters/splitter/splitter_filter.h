#pragma once

#include "filters/base/picture_orientation.h"
#include "filters/splitter/source_seeking.h"
#include "filters/splitter/splitter_pin.h"
#include "filters/splitter/splitter_settings.h"

#include <array>
#include <mutex>
#include <set>

namespace brindlecast {

// The file source and splitter. The state lock guards everything here but what streaming threads read, which
// does not change while they run: the list of streams, the queues, the file.
class SplitterFilter final : public BaseFilter,
                             public IFileSourceFilter,
                             public IAMStreamSelect,
                             public IKeyFrameInfo,
                             public IPictureOrientation,
                             public SplitterSettings,
                             public SeekTarget,
                             public SourceSeeking {
public:
    SplitterFilter();

    BRINDLECAST_COM_METHODS

    STDMETHODIMP Stop() override;
    STDMETHODIMP Pause() override;

    STDMETHODIMP Load(LPCOLESTR path, const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP GetCurFile(LPOLESTR* path, AM_MEDIA_TYPE* type) override;

    STDMETHODIMP Count(DWORD* count) override;
    STDMETHODIMP Info(LONG index, AM_MEDIA_TYPE** type, DWORD* flags, LCID* language, DWORD* group,
                      WCHAR** name, IUnknown** object, IUnknown** unknown) override;
    STDMETHODIMP Enable(LONG index, DWORD flags) override;

    STDMETHODIMP GetKeyFrameCount(UINT& count) override;
    STDMETHODIMP GetKeyFrames(const GUID* format, REFERENCE_TIME* keyFrames, UINT& count) override;

    // Of the chosen video stream. On the thread that connects pins and chooses streams.
    int STDMETHODCALLTYPE GetPictureRotation() override;

    HRESULT SeekTo(const void* asker, const LONGLONG* start, const LONGLONG* stop) override;
    HRESULT ChangeRate(double rate) override;
    LONGLONG SeekDuration() override;
    LONGLONG SeekPosition() override;
    LONGLONG SeekStop() override;
    double SeekRate() override;
    LONGLONG KeyframeBefore(LONGLONG time) override;

    // For the pins.
    [[nodiscard]] PacketQueues& Queues() noexcept { return queues; }
    [[nodiscard]] const DemuxStream& StreamAt(int stream) const {
        return streams[static_cast<std::size_t>(stream)];
    }
    [[nodiscard]] std::vector<MediaType> TypesOf(int stream) const;
    void OnConnectedWhileActive(SplitterPin& pin);
    void OnDisconnectedWhileActive(SplitterPin& pin);
    // A delivery thread has handed on a packet.
    void OnDelivered();

private:
    ~SplitterFilter() override;
    void* FindInterface(REFIID iid) noexcept override;
    void OnLimitsChanged() override { queues.SetLimits(Limits()); }

    HRESULT OpenFile(const std::wstring& path);
    void CreatePin(StreamKind kind, int stream);
    [[nodiscard]] SplitterPin* PinOf(StreamKind kind) const { return pins[static_cast<std::size_t>(kind)]; }
    [[nodiscard]] int EnabledStream(StreamKind kind) const;
    [[nodiscard]] bool AnyConnected() const;

    // splitter_streaming.cpp
    void StartStreaming();
    void StopStreaming(bool flush);
    // Begins delivery anew at the segment, with a flush.
    void Restart();
    void ReadFile() noexcept;
    void ReadPackets();
    [[nodiscard]] BasePin::Segment RequestedSegment() const;
    void Request(const BasePin::Segment& requested);
    [[nodiscard]] BasePin::Segment RunningSegment() const;
    [[nodiscard]] REFERENCE_TIME StreamTime();
    HRESULT SwitchStream(SplitterPin& pin, int stream);

    std::wstring currentPath;
    std::unique_ptr<DemuxFile> file;
    std::vector<DemuxStream> streams;   // of the file; decodable says whether a pin can carry it
    std::array<SplitterPin*, 3> pins{}; // by kind, owned by the list of pins

    PacketQueues queues;
    std::thread reader;
    bool streaming = false;
    bool placed = true; // the file stands where the segment starts

    // Positions are asked for on streaming threads too, a renderer's at its end for example, while a seek
    // that holds the state lock waits for those threads: what answers them has a lock of its own.
    mutable std::mutex segmentLock;          // leaf lock
    BasePin::Segment segment;                // stop 0: none was set; written by control calls alone
    std::atomic<REFERENCE_TIME> pausedAt{0}; // stream time while paused
    std::set<const void*> askers;            // who has asked for the present segment
    std::atomic<DemuxTime> duration{0};
};

} // namespace brindlecast

#pragma once

#include "filters/base/input_pin.h"
#include "filters/base/upstream_seeking.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <optional>

namespace brindlecast {

// A renderer that writes down what arrives. It takes samples as fast as they come, unless told to block or
// refuse.
class RecordingSink final : public BaseFilter, public UpstreamSeeking {
public:
    struct Sample {
        std::optional<REFERENCE_TIME> start;
        std::optional<REFERENCE_TIME> stop;
        bool syncPoint = false;
        bool preroll = false;
        bool discontinuity = false;
        bool formatChange = false;
        std::vector<BYTE> bytes;
        std::vector<std::pair<GUID, std::vector<BYTE>>> sideData;
        std::chrono::steady_clock::time_point arrived;
    };
    enum class Kind { Sample, EndOfStream, BeginFlush, EndFlush, NewSegment };
    struct Event {
        Kind kind;
        Sample sample;            // for Kind::Sample
        BasePin::Segment segment; // for Kind::NewSegment
        DWORD thread = 0;
    };

    // Accepts types that `accepts` likes; without it every type of that major type.
    static Microsoft::WRL::ComPtr<RecordingSink> Create(const GUID& majorType,
                                                        std::function<bool(const MediaType&)> accepts = {});

    BRINDLECAST_COM_METHODS

    STDMETHODIMP Stop() override;
    STDMETHODIMP Run(REFERENCE_TIME start) override;

    // While set, Receive does not return until a flush, Stop or false.
    void Block(bool block);
    // What Receive answers instead of taking the sample, until S_OK.
    void Refuse(HRESULT result);
    // What the streaming thread does when it brings the end of the stream, once it is written down. Set
    // before the stream runs.
    void AtEndOfStream(std::function<void()> action) { atEndOfStream_ = std::move(action); }
    // Whether sample bytes are kept (default true).
    void KeepBytes(bool keep) { keepBytes_ = keep; }

    [[nodiscard]] InputPin& Pin() noexcept;
    [[nodiscard]] std::vector<Event> Events();
    // The samples among the events since the last NewSegment or EndFlush.
    [[nodiscard]] std::vector<Sample> SamplesOfSegment();
    // All samples.
    [[nodiscard]] std::vector<Sample> Samples();
    [[nodiscard]] std::size_t Count(Kind kind);
    void Clear();
    // Waits until `done` of the events holds; false when it takes longer.
    bool WaitFor(const std::function<bool(const std::vector<Event>&)>& done, int milliseconds = 5000);
    bool WaitForCount(Kind kind, std::size_t count, int milliseconds = 5000);
    // True while Receive is being blocked.
    [[nodiscard]] bool IsBlocking();

private:
    class Inlet;

    RecordingSink(const GUID& majorType, std::function<bool(const MediaType&)> accepts);
    ~RecordingSink() override;
    void* FindInterface(REFIID iid) noexcept override;
    Microsoft::WRL::ComPtr<IPin> UpstreamPin() override;
    HRESULT Take(IMediaSample& sample);
    void Write(Event event);

    const GUID majorType_;
    const std::function<bool(const MediaType&)> accepts_;
    Inlet* pin_ = nullptr; // owned by the list of pins
    std::atomic<bool> keepBytes_{true};
    std::function<void()> atEndOfStream_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Event> events_;
    bool block_ = false;
    bool blocking_ = false;
    bool flushing_ = false;
    HRESULT refusal_ = S_OK;
};

} // namespace brindlecast

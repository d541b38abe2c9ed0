#pragma once

#include "filters/base/output_pin.h"

#include <optional>

namespace brindlecast {

// A source with one output pin that delivers, on the calling thread, what a test hands it.
class PushSource final : public BaseFilter {
public:
    // Offers these types, best first.
    static Microsoft::WRL::ComPtr<PushSource> Create(std::vector<MediaType> types, LONG bufferSize = 1 << 20,
                                                     LONG bufferCount = 8);

    BRINDLECAST_COM_METHODS

    [[nodiscard]] OutputPin& Pin() noexcept;

    struct Options {
        std::optional<REFERENCE_TIME> start;
        std::optional<REFERENCE_TIME> stop;
        bool syncPoint = true;
        bool preroll = false;
        bool discontinuity = false;
        std::vector<std::pair<GUID, std::vector<BYTE>>> sideData;
        const MediaType* formatChange = nullptr;
    };
    // Delivers one sample; the receiver's answer. Blocks as long as the receiver does.
    HRESULT Push(const void* data, std::size_t size, const Options& options);
    // Flush downstream, then a new segment.
    void FlushAndSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate);

private:
    class Outlet;

    PushSource(std::vector<MediaType> types, LONG bufferSize, LONG bufferCount);
    ~PushSource() override;

    Outlet* pin_ = nullptr; // owned by the list of pins
};

} // namespace brindlecast

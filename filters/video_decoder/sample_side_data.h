#pragma once

#include "filters/base/media_sample.h"
#include "filters/core/video_decoder.h"

#include <vector>
#include <wrl/client.h>

namespace brindlecast {

// The side data of a compressed sample, as far as they are the library's. Valid as long as this object and
// the sample live.
class InputSideData {
public:
    explicit InputSideData(IMediaSample& sample);

    [[nodiscard]] std::span<const CodecSideData> blocks() const { return blocks_; }

private:
    Microsoft::WRL::ComPtr<ISampleSideData> holder_;
    std::vector<CodecSideData> blocks_;
};

// Hands what the renderer needs to know of a picture beyond its type (rotation, mastering display, light
// levels) to the sample that carries it. A sample of a foreign allocator carries none.
HRESULT CopySideData(const AVFrame& picture, IMediaSample& sample);

} // namespace brindlecast

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

    [[nodiscard]] std::span<const CodecSideData> Blocks() const { return blocks; }

private:
    Microsoft::WRL::ComPtr<ISampleSideData> holder;
    std::vector<CodecSideData> blocks;
};

// Hands what the renderer needs to know of a picture beyond its type (rotation, mastering display, light
// levels) to the sample that carries it. A sample of a foreign allocator carries none.
HRESULT CopySideData(const AVFrame& picture, IMediaSample& sample);

} // namespace brindlecast

#pragma once

#include "filters/base/stream_formats.h"
#include "filters/include/lav_splitter.h"
#include "tests/filters/support/recording_sink.h"
#include "tests/filters/support/test_graph.h"
#include "tests/filters/support/test_module.h"

#include <gmock/gmock.h>
#include <memory>

namespace brindlecast {

constexpr LONGLONG kMillisecond = 10'000;
constexpr LONGLONG kSecond = 10'000'000;

// The splitter with a file, in a graph without a clock, with recording sinks at its video and audio pins.
class SplitterRig {
public:
    explicit SplitterRig(bool keepBytes = false);
    ~SplitterRig();

    HRESULT Load(const std::wstring& path);
    // Connects a sink to every pin there is; a failure ends the test by an exception.
    void ConnectAll();
    // Loads a generated file and connects.
    void Open(const std::wstring& name);

    [[nodiscard]] Microsoft::WRL::ComPtr<IPin> Pin(const wchar_t* name) const {
        return PinNamed(splitter.Get(), name);
    }
    // Seeks through the splitter's own interface, as one asker.
    HRESULT Seek(LONGLONG target);
    // Every time the keyframe table holds.
    [[nodiscard]] std::vector<REFERENCE_TIME> Keyframes() const;

    struct StreamInfo {
        GUID major{};
        DWORD flags = 0;
        DWORD group = 0;
        std::wstring name;
    };
    [[nodiscard]] std::vector<StreamInfo> Streams() const;

    TestModule module{L"LAVSplitter.ax"};
    std::unique_ptr<TestGraph> graph;
    Microsoft::WRL::ComPtr<IBaseFilter> splitter;
    Microsoft::WRL::ComPtr<IMediaSeeking> seeking;
    Microsoft::WRL::ComPtr<IAMStreamSelect> streams;
    Microsoft::WRL::ComPtr<IKeyFrameInfo> keyframeInfo;
    Microsoft::WRL::ComPtr<ILAVFSettings> settings;
    Microsoft::WRL::ComPtr<RecordingSink> video;
    Microsoft::WRL::ComPtr<RecordingSink> audio;
};

} // namespace brindlecast

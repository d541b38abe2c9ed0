#pragma once

#include "filters/base/media_type.h"

#include <control.h>
#include <string>
#include <vector>
#include <wrl/client.h>

namespace brindlecast {

// A system filter graph with shortcuts. Failures of set-up end the test by an exception. Main thread.
class TestGraph {
public:
    TestGraph();
    TestGraph(const TestGraph&) = delete;
    TestGraph& operator=(const TestGraph&) = delete;
    // Stops the graph, then lets it go.
    ~TestGraph();

    void Add(IBaseFilter* filter, const wchar_t* name);
    // Connects two pins directly, with no filter between.
    HRESULT ConnectDirect(IPin* from, IPin* to, const MediaType* type = nullptr);
    // Runs without a reference clock when called: renderers do not wait.
    void RemoveClock();
    // Runs by the system's clock.
    void UseSystemClock();

    HRESULT Run();
    HRESULT Pause();
    HRESULT Stop();
    // Waits for an event of that code while throwing others away; false when it takes longer.
    bool WaitForEvent(long code, int milliseconds = 5000);

    [[nodiscard]] IGraphBuilder* Graph() const { return graph_.Get(); }
    [[nodiscard]] IMediaSeeking* Seeking() const { return seeking_.Get(); }
    [[nodiscard]] IMediaControl* Control() const { return control_.Get(); }

private:
    void SetClock(IReferenceClock* clock);

    Microsoft::WRL::ComPtr<IGraphBuilder> graph_;
    Microsoft::WRL::ComPtr<IMediaControl> control_;
    Microsoft::WRL::ComPtr<IMediaEvent> events_;
    Microsoft::WRL::ComPtr<IMediaSeeking> seeking_;
};

// The filter's pins of a direction, in order.
[[nodiscard]] std::vector<Microsoft::WRL::ComPtr<IPin>> PinsOf(IBaseFilter* filter, PIN_DIRECTION direction);
// The output or input pin of that name, or null.
[[nodiscard]] Microsoft::WRL::ComPtr<IPin> PinNamed(IBaseFilter* filter, const std::wstring& name);
[[nodiscard]] std::wstring NameOf(IPin* pin);
// What a pin enumerates.
[[nodiscard]] std::vector<MediaType> TypesOf(IPin* pin);

} // namespace brindlecast

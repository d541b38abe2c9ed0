#include "engine/stream_select.h"
#include "engine/subtitle_grabber.h"
#include "tests/graph/fakes/fake_filter.h"

// Stands in for the system's null renderer where a test wants to see the calls and to let them fail.

namespace brindlecast::testing {

const char* const kFakeName = "NullRenderer";
const CLSID kFakeClass = kClsidNullRenderer;

namespace {

class FakeNullRenderer final : public FakeFilter {
public:
    FakeNullRenderer() : FakeFilter(L"NullRenderer", kFakeClass) {
        AddPin(L"In", PINDIR_INPUT, {{kMajorTypeSubtitle, GUID_NULL, GUID_NULL, {}}});
    }
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeNullRenderer;
}

} // namespace brindlecast::testing

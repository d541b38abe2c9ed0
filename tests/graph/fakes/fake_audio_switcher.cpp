#include "filters/include/audio_switcher.h"
#include "tests/graph/fakes/fake_filter.h"

namespace brindlecast::testing {

const char* const kFakeName = "AudioSwitcher";
const CLSID kFakeClass = kClsidAudioSwitcher;

namespace {

using SpeakerMap = DWORD (*)[kAudioSwitcherSpeakers];

class FakeAudioSwitcher final : public FakeFilter, public IAudioSwitcherFilter {
public:
    FakeAudioSwitcher() : FakeFilter(L"AudioSwitcher", kFakeClass) {
        AddPin(L"Input", PINDIR_INPUT, {PlainAudioType()});
        AddPin(L"Output", PINDIR_OUTPUT, {PlainAudioType()});
    }
    FAKE_UNKNOWN

    STDMETHODIMP SetNormalizeBoost2(bool normalize, UINT maxFactorPercent, bool recover,
                                    UINT boostPercent) override {
        Record(kRecordCall, FormatText(L"SetNormalizeBoost2(%d, %u, %d, %u)", normalize, maxFactorPercent,
                                       recover, boostPercent));
        return Script("rejectSettings");
    }
    FAKE_UNEXPECTED(HRESULT, GetInputSpeakerConfig, DWORD*)
    FAKE_UNEXPECTED(HRESULT, GetSpeakerConfig, bool*, SpeakerMap)
    FAKE_UNEXPECTED(HRESULT, SetSpeakerConfig, bool, SpeakerMap)
    FAKE_UNEXPECTED(int, GetNumberOfInputChannels)
    FAKE_UNEXPECTED(bool, IsDownSamplingTo441Enabled)
    FAKE_UNEXPECTED(HRESULT, EnableDownSamplingTo441, bool)
    FAKE_UNEXPECTED(REFERENCE_TIME, GetAudioTimeShift)
    FAKE_UNEXPECTED(HRESULT, SetAudioTimeShift, REFERENCE_TIME)
    FAKE_UNEXPECTED(HRESULT, GetNormalizeBoost, bool&, bool&, float&)
    FAKE_UNEXPECTED(HRESULT, SetNormalizeBoost, bool, bool, float)
    FAKE_UNEXPECTED(HRESULT, GetNormalizeBoost2, bool&, UINT&, bool&, UINT&)

protected:
    void* FindInterface(REFIID iid) override {
        return iid == __uuidof(IAudioSwitcherFilter)
                   ? Offer("noControl", static_cast<IAudioSwitcherFilter*>(this))
                   : nullptr;
    }
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeAudioSwitcher;
}

} // namespace brindlecast::testing

#include "filters/include/lav_audio.h"
#include "tests/graph/fakes/fake_filter.h"

// An audio decoder. Its script: "LAVAudio.drcEnabled", "LAVAudio.drcLevel", "LAVAudio.getDrc" and
// "LAVAudio.setDrc" (failures), "LAVAudio.details" (failure), "LAVAudio.noCodec" (no codec name).

namespace brindlecast::testing {

const char* const kFakeName = "LAVAudio";
const CLSID kFakeClass = kClsidLavAudio;

namespace {

class FakeAudioDecoder final : public FakeFilter, public ILAVAudioSettings, public ILAVAudioStatus {
public:
    FakeAudioDecoder() : FakeFilter(L"LAVAudio", kFakeClass) {
        AddPin(L"Input", PINDIR_INPUT, {CompressedAudioType()});
        AddPin(L"Output", PINDIR_OUTPUT, {PlainAudioType()});
    }
    FAKE_UNKNOWN

    // ILAVAudioSettings
    STDMETHODIMP SetRuntimeConfig(BOOL value) override { return Set(L"SetRuntimeConfig(%d)", value); }
    STDMETHODIMP GetDRC(BOOL* enabled, int* level) override {
        Record(kRecordQuery, L"GetDRC");
        *enabled = static_cast<BOOL>(Script("drcEnabled"));
        *level = static_cast<int>(Script("drcLevel"));
        return Script("getDrc");
    }
    STDMETHODIMP SetDRC(BOOL enabled, int level) override {
        Set(L"SetDRC(%d, %d)", enabled, level);
        return Script("setDrc");
    }
    STDMETHODIMP SetExpandMono(BOOL value) override { return Set(L"SetExpandMono(%d)", value); }
    STDMETHODIMP SetMixingEnabled(BOOL value) override { return Set(L"SetMixingEnabled(%d)", value); }
    STDMETHODIMP SetMixingLayout(DWORD value) override { return Set(L"SetMixingLayout(%u)", value); }
    STDMETHODIMP SetTrayIcon(BOOL value) override { return Set(L"SetTrayIcon(%d)", value); }
    FAKE_UNEXPECTED(BOOL, GetFormatConfiguration, int)
    FAKE_UNEXPECTED(HRESULT, SetFormatConfiguration, int, BOOL)
    FAKE_UNEXPECTED(BOOL, GetBitstreamConfig, int)
    FAKE_UNEXPECTED(HRESULT, SetBitstreamConfig, int, BOOL)
    FAKE_UNEXPECTED(BOOL, GetDTSHDFraming)
    FAKE_UNEXPECTED(HRESULT, SetDTSHDFraming, BOOL)
    FAKE_UNEXPECTED(BOOL, GetAutoAVSync)
    FAKE_UNEXPECTED(HRESULT, SetAutoAVSync, BOOL)
    FAKE_UNEXPECTED(BOOL, GetOutputStandardLayout)
    FAKE_UNEXPECTED(HRESULT, SetOutputStandardLayout, BOOL)
    FAKE_UNEXPECTED(BOOL, GetExpandMono)
    FAKE_UNEXPECTED(BOOL, GetExpand61)
    FAKE_UNEXPECTED(HRESULT, SetExpand61, BOOL)
    FAKE_UNEXPECTED(BOOL, GetAllowRawSPDIFInput)
    FAKE_UNEXPECTED(HRESULT, SetAllowRawSPDIFInput, BOOL)
    FAKE_UNEXPECTED(BOOL, GetSampleFormat, int)
    FAKE_UNEXPECTED(HRESULT, SetSampleFormat, int, BOOL)
    FAKE_UNEXPECTED(HRESULT, GetAudioDelay, BOOL*, int*)
    FAKE_UNEXPECTED(HRESULT, SetAudioDelay, BOOL, int)
    FAKE_UNEXPECTED(BOOL, GetMixingEnabled)
    FAKE_UNEXPECTED(DWORD, GetMixingLayout)
    FAKE_UNEXPECTED(HRESULT, SetMixingFlags, DWORD)
    FAKE_UNEXPECTED(DWORD, GetMixingFlags)
    FAKE_UNEXPECTED(HRESULT, SetMixingMode, int)
    FAKE_UNEXPECTED(int, GetMixingMode)
    FAKE_UNEXPECTED(HRESULT, SetMixingLevels, DWORD, DWORD, DWORD)
    FAKE_UNEXPECTED(HRESULT, GetMixingLevels, DWORD*, DWORD*, DWORD*)
    FAKE_UNEXPECTED(BOOL, GetTrayIcon)
    FAKE_UNEXPECTED(HRESULT, SetSampleConvertDithering, BOOL)
    FAKE_UNEXPECTED(BOOL, GetSampleConvertDithering)
    FAKE_UNEXPECTED(HRESULT, SetSuppressFormatChanges, BOOL)
    FAKE_UNEXPECTED(BOOL, GetSuppressFormatChanges)
    FAKE_UNEXPECTED(BOOL, GetOutput51LegacyLayout)
    FAKE_UNEXPECTED(HRESULT, SetOutput51LegacyLayout, BOOL)
    FAKE_UNEXPECTED(BOOL, GetBitstreamingFallback)
    FAKE_UNEXPECTED(HRESULT, SetBitstreamingFallback, BOOL)

    // ILAVAudioStatus
    STDMETHODIMP GetDecodeDetails(LPCSTR* codec, LPCSTR* format, int* channels, int* sampleRate,
                                  DWORD* channelMask) override {
        Record(kRecordQuery, L"GetDecodeDetails");
        *codec = Script("noCodec") != 0 ? nullptr : "aac";
        *format = "AAC LC";
        *channels = 6;
        *sampleRate = 44100;
        *channelMask = 0x3F;
        return Script("details");
    }
    FAKE_UNEXPECTED(BOOL, IsSampleFormatSupported, int)
    FAKE_UNEXPECTED(HRESULT, GetOutputDetails, LPCSTR*, int*, int*, DWORD*)
    FAKE_UNEXPECTED(HRESULT, EnableVolumeStats)
    FAKE_UNEXPECTED(HRESULT, DisableVolumeStats)
    FAKE_UNEXPECTED(HRESULT, GetChannelVolumeAverage, WORD, float*)

protected:
    void* FindInterface(REFIID iid) override {
        if (iid == __uuidof(ILAVAudioSettings)) {
            return Offer("noSettings", static_cast<ILAVAudioSettings*>(this));
        }
        if (iid == __uuidof(ILAVAudioStatus)) {
            return Offer("noStatus", static_cast<ILAVAudioStatus*>(this));
        }
        return nullptr;
    }

private:
    template <class... Values>
    HRESULT Set(const wchar_t* format, const Values&... values) {
        Record(kRecordCall, FormatText(format, values...));
        return Script("rejectSettings");
    }
};

} // namespace

FakeFilter* MakeFakeFilter() {
    return new FakeAudioDecoder;
}

} // namespace brindlecast::testing

#include "app/settings.h"
#include "engine/player_engine.h"
#include "engine/stream_select.h"
#include "engine/volume_curve.h"
#include "filters/include/lav_audio.h"

#include <algorithm>

namespace brindlecast {

namespace {

constexpr int kFullCompression = 100;

} // namespace

bool PlayerEngine::SetVolume(float newVolume) {
    volume = ClampVolume(newVolume);
    settings.WriteDword(settings::kVolume.name, VolumePercent(volume));
    if (basicAudio == nullptr) {
        return false;
    }
    return SUCCEEDED(basicAudio->put_Volume(VolumeAmplitude(volume, muted)));
}

void PlayerEngine::SetMuted(bool mute) {
    muted = mute;
    settings.WriteDword(settings::kMuted.name, muted ? 1 : 0);
    SetVolume(volume);
}

void PlayerEngine::ApplyNormalization() {
    const bool normalize = ReadSetting(settings, settings::kAudioNormalize) != 0;
    const bool recover = ReadSetting(settings, settings::kAudioNormalizeRecover) != 0;
    const std::uint32_t maxFactorPercent = ReadSetting(settings, settings::kAudioMaxNormFactor);
    const std::uint32_t boostPercent = ReadSetting(settings, settings::kAudioBoost);
    audioSwitcherControl->SetNormalizeBoost2(normalize, maxFactorPercent, recover, boostPercent);
    audioNormalize = normalize;
    audioNormalizeRecover = recover;
    audioMaxNormFactor = static_cast<float>(maxFactorPercent / 100.0);
    audioBoostGain = static_cast<float>(boostPercent / 100.0 + 1.0);
}

bool PlayerEngine::SetDRC(bool enabled, int level) {
    const auto decoder = QueryFor<ILAVAudioSettings>(lavAudio.Get());
    if (decoder == nullptr) {
        return false;
    }
    const int clamped = std::clamp(level, 0, kFullCompression);
    settings.WriteDword(settings::kDrcEnabled.name, enabled ? 1 : 0);
    settings.WriteDword(settings::kDrcLevel.name, static_cast<std::uint32_t>(clamped));
    return SUCCEEDED(decoder->SetDRC(enabled ? TRUE : FALSE, clamped));
}

bool PlayerEngine::GetDRC(bool* enabled, std::uint32_t* level) const {
    if (enabled == nullptr || level == nullptr) {
        return false;
    }
    const auto decoder = QueryFor<ILAVAudioSettings>(lavAudio.Get());
    BOOL on = FALSE;
    int strength = 0;
    if (decoder == nullptr || FAILED(decoder->GetDRC(&on, &strength))) {
        return false;
    }
    *enabled = on != FALSE;
    *level = static_cast<std::uint32_t>(strength);
    return true;
}

void PlayerEngine::ToggleDRC() {
    bool enabled = false;
    std::uint32_t level = 0;
    if (GetDRC(&enabled, &level)) {
        SetDRC(!enabled, static_cast<int>(level));
        return;
    }
    SetDRC(ReadSetting(settings, settings::kDrcEnabled) == 0, kFullCompression);
}

int PlayerEngine::GetAudioTrackCount() const {
    return StreamWalk(splitter.Get()).CountOf(StreamKind::Audio);
}

int PlayerEngine::GetActiveAudioTrack() const {
    return StreamWalk(splitter.Get()).FirstEnabled(StreamKind::Audio);
}

std::wstring PlayerEngine::GetAudioTrackName(unsigned ordinal) const {
    return StreamWalk(splitter.Get()).NameOf(StreamKind::Audio, ordinal);
}

bool PlayerEngine::SelectAudioTrack(unsigned ordinal) {
    const StreamWalk walk(splitter.Get());
    const int index = walk.IndexOf(StreamKind::Audio, ordinal);
    return index >= 0 && SUCCEEDED(walk.Enable(static_cast<DWORD>(index), AMSTREAMSELECTENABLE_ENABLE));
}

int PlayerEngine::GetEmbeddedSubtitleCount() const {
    return StreamWalk(splitter.Get()).CountOf(StreamKind::Subtitle);
}

std::wstring PlayerEngine::GetEmbeddedSubtitleName(int ordinal) const {
    if (ordinal < 0) {
        return {};
    }
    return StreamWalk(splitter.Get()).NameOf(StreamKind::Subtitle, static_cast<unsigned>(ordinal));
}

int PlayerEngine::MapEmbeddedSubtitleStream(unsigned ordinal) const {
    return StreamWalk(splitter.Get()).IndexOf(StreamKind::Subtitle, ordinal);
}

} // namespace brindlecast

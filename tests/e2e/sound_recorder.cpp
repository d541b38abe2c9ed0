#include "tests/e2e/sound_recorder.h"

#include "tests/e2e/environment.h"
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace brindlecast::testing {

namespace {

constexpr int kRate = 48'000;
constexpr std::uintmax_t kBytesPerFrame = 4;

std::uintmax_t SizeOfFile(const std::wstring& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

} // namespace

SoundRecorder& SoundRecorder::Instance() {
    static SoundRecorder recorder;
    return recorder;
}

SoundRecorder::SoundRecorder() : path(ReportFolder() + L"\\e2e_sound.s16le") {
    std::filesystem::remove(path);
    const std::wstring arguments =
        L"-d null0.monitor --format=s16le --rate=48000 --channels=2 --latency-msec=20 --raw \"" +
        NativePath(path) + L"\"";
    if (!StartNative(L"Z:\\usr\\bin\\parec", arguments) ||
        !WaitUntil(limits::kStart, "sound recorder", [this] { return SizeOfFile(path) > 0; })) {
        throw std::runtime_error("the sound can't be recorded");
    }
}

Recording SoundRecorder::Last(double seconds) const {
    const std::uintmax_t frames = SizeOfFile(path) / kBytesPerFrame;
    const auto wanted = std::min(frames, static_cast<std::uintmax_t>(seconds * kRate));
    std::vector<std::int16_t> samples(static_cast<std::size_t>(wanted) * 2);
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    file.seekg(static_cast<std::streamoff>((frames - wanted) * kBytesPerFrame));
    file.read(reinterpret_cast<char*>(samples.data()),
              static_cast<std::streamsize>(samples.size() * sizeof(std::int16_t)));
    return SplitStereo(samples, kRate);
}

bool SoundRecorder::Hears(double frequency, std::chrono::milliseconds limit) const {
    return WaitUntil(limit, "sound", [&] {
        const Recording sound = Last(0.4);
        const auto heard = DominantFrequency(sound.left, sound.rate);
        return heard && std::abs(*heard - frequency) < 1.0;
    });
}

} // namespace brindlecast::testing

#pragma once

#include <string>
#include <vector>

namespace brindlecast::testing {

// One test file as manifest.tsv describes it. Times are seconds of the container's time line; what does not
// apply is 0 or empty.
struct MediaEntry {
    std::string name; // UTF-8
    bool broken = false;
    double duration = 0; // 0 also where the container does not say
    int frames = 0;
    double fps = 0;
    int firstNumber = 0; // mark of the first frame; the others count up from it
    int width = 0;
    int height = 0;
    int displayWidth = 0; // after pixel aspect and rotation
    int displayHeight = 0;
    double videoStart = 0; // presentation time of the first frame
    double audioStart = 0;
    std::vector<double> tones; // Hz, left channel, one per audio stream
    double toneLevel = 0;      // dBFS, left channel
    std::vector<double> keyframes;
};

// Throws std::runtime_error when the folder has no readable manifest.
[[nodiscard]] std::vector<MediaEntry> ReadManifest(const std::string& folder);

} // namespace brindlecast::testing

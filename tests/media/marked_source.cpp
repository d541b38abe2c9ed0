// Writes marked raw picture or sound to standard output, for an encoder to read:
//   marked_source video WIDTH HEIGHT FPS FRAMES FIRST_NUMBER MATRIX RANGE PIXEL_ASPECT HUE   planar 4:2:0, 8
//   bit marked_source audio SECONDS FREQUENCY LEVEL                                     s16le, stereo, 48000
//   Hz
#include "tests/support/frame_mark.h"
#include "tests/support/tone_analysis.h"

#include <cmath>
#include <cstdio>
#include <exception>
#include <numbers>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace brindlecast::testing {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

struct VideoPlan {
    int width;
    int height;
    double framesPerSecond;
    int frames;
    int firstNumber;
    YuvMatrix matrix;
    bool fullRange;
    double pixelAspect; // width of a pixel by its height
    double hue;         // 0..1, tints the background so that films differ at a glance
};

void Write(std::span<const std::uint8_t> bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
        throw std::runtime_error("cannot write to standard output");
    }
}

// Soft waves that wander, so that every frame differs everywhere and the encoder has motion to code.
void DrawBackground(const PlanarView& image, const VideoPlan& plan, double seconds) {
    std::vector<double> across(static_cast<std::size_t>(image.width));
    for (std::size_t x = 0; x < across.size(); ++x) {
        const double place = static_cast<double>(x) / image.width;
        across[x] = 22 * std::sin(kTurn * (3 * place + 0.31 * seconds)) +
                    8 * std::sin(kTurn * (17 * place - seconds));
    }
    for (int y = 0; y < image.height; ++y) {
        const double place = static_cast<double>(y) / image.height;
        const double down = 90 + 18 * std::sin(kTurn * (2 * place - 0.23 * seconds));
        std::uint8_t* row = image.planes[0] + image.strides[0] * y;
        for (std::size_t x = 0; x < across.size(); ++x) {
            row[x] = static_cast<std::uint8_t>(down + across[x]);
        }
    }
    const int chromaWidth = image.width / 2;
    for (int y = 0; y < image.height / 2; ++y) {
        for (int x = 0; x < chromaWidth; ++x) {
            const double angle = kTurn * (plan.hue + 0.1 * x / chromaWidth);
            image.planes[1][image.strides[1] * y + x] = static_cast<std::uint8_t>(128 + 24 * std::cos(angle));
            image.planes[2][image.strides[2] * y + x] = static_cast<std::uint8_t>(128 + 24 * std::sin(angle));
        }
    }
}

// Round on the screen, whatever the shape of a pixel.
void DrawCircle(const PlanarView& image, double pixelAspect) {
    FillArea(image, {0, 0.02, 1, 0.26}, {16, 16, 16});
    const double radius = 0.10 * image.height;
    const double middleX = 0.5 * image.width;
    const double middleY = 0.14 * image.height;
    const std::uint8_t white = ToYuv({255, 255, 255}, image.matrix, image.fullRange)[0];
    for (int y = 0; y < image.height / 3; ++y) {
        const double down = (y + 0.5 - middleY) / radius;
        for (int x = 0; x < image.width; ++x) {
            const double side = (x + 0.5 - middleX) * pixelAspect / radius;
            if (down * down + side * side <= 1) {
                image.planes[0][image.strides[0] * y + x] = white;
            }
        }
    }
}

void WriteVideo(const VideoPlan& plan) {
    const auto lumaSize = static_cast<std::size_t>(plan.width) * static_cast<std::size_t>(plan.height);
    std::vector<std::uint8_t> frame(lumaSize * 3 / 2);
    const PlanarView view{{frame.data(), frame.data() + lumaSize, frame.data() + lumaSize * 5 / 4},
                          {plan.width, plan.width / 2, plan.width / 2},
                          plan.width,
                          plan.height,
                          1,
                          1,
                          plan.matrix,
                          plan.fullRange};
    for (int i = 0; i < plan.frames; ++i) {
        const double seconds = i / plan.framesPerSecond;
        DrawBackground(view, plan, seconds);
        DrawCircle(view, plan.pixelAspect);
        DrawFrameMark(view, static_cast<std::uint16_t>(plan.firstNumber + i));
        DrawColourPatches(view);
        // A block that crosses the picture every two seconds.
        const double left = std::fmod(seconds, 2.0) / 2.0 * 0.9;
        FillArea(view, {left, 0.74, left + 0.1, 0.90}, {240, 200, 40});
        Write(frame);
    }
}

// Left a steady tone, right the position tone (see tone_analysis.h).
void WriteAudio(double seconds, double frequency, double level) {
    constexpr int kRate = 48000;
    const double amplitude = 32767 * std::numbers::sqrt2 * std::pow(10.0, level / 20);
    const auto count = static_cast<std::size_t>(std::lround(seconds * kRate));
    std::vector<std::uint8_t> bytes;
    bytes.reserve(count * 4);
    double leftPhase = 0;
    double rightPhase = 0;
    const auto put = [&bytes](double sample) {
        const auto value = static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(sample)));
        bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    };
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t second = i / kRate;
        const bool tick = static_cast<double>(i % kRate) / kRate < kTickLength;
        put(amplitude * std::sin(leftPhase));
        put(amplitude * (tick ? 2 : 1) * std::sin(rightPhase));
        leftPhase = std::fmod(leftPhase + kTurn * frequency / kRate, kTurn);
        const double position = kPositionBase + kPositionStep * static_cast<double>(second);
        rightPhase = std::fmod(rightPhase + kTurn * position / kRate, kTurn);
    }
    Write(bytes);
}

// "25" or "24000/1001".
double Ratio(const std::string& text) {
    const std::size_t slash = text.find('/');
    return slash == std::string::npos ? std::stod(text)
                                      : std::stod(text.substr(0, slash)) / std::stod(text.substr(slash + 1));
}

int Run(std::span<char* const> arguments) {
    const std::vector<std::string> words(arguments.begin(), arguments.end());
    if (words.size() == 11 && words[1] == "video") {
        const VideoPlan plan{
            std::stoi(words[2]), std::stoi(words[3]), Ratio(words[4]),
            std::stoi(words[5]), std::stoi(words[6]), words[7] == "601" ? YuvMatrix::Bt601 : YuvMatrix::Bt709,
            words[8] == "full",  Ratio(words[9]),     Ratio(words[10])};
        if (plan.width % 2 != 0 || plan.height % 2 != 0 || plan.width <= 0 || plan.height <= 0) {
            throw std::invalid_argument("width and height must be even");
        }
        WriteVideo(plan);
        return 0;
    }
    if (words.size() == 5 && words[1] == "audio") {
        WriteAudio(std::stod(words[2]), std::stod(words[3]), std::stod(words[4]));
        return 0;
    }
    std::fputs(
        "usage: marked_source video WIDTH HEIGHT FPS FRAMES FIRST_NUMBER 601|709 limited|full ASPECT HUE\n"
        "       marked_source audio SECONDS FREQUENCY LEVEL\n",
        stderr);
    return 2;
}

} // namespace
} // namespace brindlecast::testing

int main(int argc, char** argv) {
    try {
        return brindlecast::testing::Run(std::span<char* const>(argv, static_cast<std::size_t>(argc)));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "marked_source: %s\n", error.what());
        return 1;
    }
}

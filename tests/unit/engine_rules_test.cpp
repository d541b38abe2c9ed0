#include "engine/clock_position.h"
#include "engine/codec_names.h"
#include "engine/hardware_choice.h"
#include "engine/pin_kind.h"
#include "engine/render_rect.h"
#include "engine/repeat_marks.h"
#include "engine/volume_curve.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <vector>

namespace brindlecast {
namespace {

TEST(RenderRectRule, WidthFillsATallHost) {
    EXPECT_EQ((RenderRect{0, 218, 1000, 562}), LetterboxRect({1920, 1080}, {1000, 1000}));
}

TEST(RenderRectRule, HeightFillsAWideHost) {
    EXPECT_EQ((RenderRect{420, 0, 1080, 1080}), LetterboxRect({1000, 1000}, {1920, 1080}));
    // 720 * 100 / 1080 is 66.6: the width is cut to 66, the left edge is half of 34.
    EXPECT_EQ((RenderRect{17, 0, 66, 100}), LetterboxRect({720, 1080}, {100, 100}));
}

TEST(RenderRectRule, SameShapeFillsTheHost) {
    EXPECT_EQ((RenderRect{0, 0, 960, 540}), LetterboxRect({1920, 1080}, {960, 540}));
}

TEST(RenderRectRule, UnknownVideoSizeGivesNothing) {
    EXPECT_EQ((RenderRect{0, 0, 0, 0}), LetterboxRect({0, 1080}, {1000, 1000}));
    EXPECT_EQ((RenderRect{0, 0, 0, 0}), LetterboxRect({1920, 0}, {1000, 1000}));
    EXPECT_EQ((RenderRect{0, 0, 0, 0}), LetterboxRect({-1, -1}, {1000, 1000}));
}

TEST(RenderRectRule, OnePixelIsAKnownSize) {
    EXPECT_EQ((RenderRect{25, 0, 50, 50}), LetterboxRect({1, 1}, {100, 50}));
    EXPECT_EQ((RenderRect{0, 25, 50, 50}), LetterboxRect({1, 1}, {50, 100}));
}

TEST(RenderRectRule, EmptyHostGivesAnEmptyPicture) {
    EXPECT_EQ((RenderRect{0, 0, 0, 0}), LetterboxRect({1920, 1080}, {0, 0}));
}

TEST(RotationRule, IsPositiveAndAQuarterTurn) {
    EXPECT_EQ(270U, NormalizeRotation(-90));
    EXPECT_EQ(90U, NormalizeRotation(450));
    EXPECT_EQ(0U, NormalizeRotation(45));
    EXPECT_EQ(0U, NormalizeRotation(360));
    EXPECT_EQ(180U, NormalizeRotation(269));
    EXPECT_EQ(270U, NormalizeRotation(-1));
    EXPECT_EQ(180U, NormalizeRotation(-540));
    EXPECT_EQ(0U, NormalizeRotation(89));
    EXPECT_EQ(90U, NormalizeRotation(90));
    EXPECT_EQ(180U, NormalizeRotation(-91));
    EXPECT_EQ(0U, NormalizeRotation(-720));
    EXPECT_EQ(180U, NormalizeRotation(std::numeric_limits<int>::min())); // 232 degrees
    EXPECT_EQ(90U, NormalizeRotation(std::numeric_limits<int>::max()));  // 127 degrees
}

TEST(VolumeRule, AmplitudeInHundredthsOfADecibel) {
    EXPECT_EQ(0, VolumeAmplitude(1.0F, false));
    EXPECT_EQ(-602, VolumeAmplitude(0.5F, false));
    EXPECT_EQ(-2000, VolumeAmplitude(0.1F, false));
    EXPECT_EQ(-4000, VolumeAmplitude(0.01F, false));
    EXPECT_EQ(-1204, VolumeAmplitude(0.25F, false)); // -1204.1
    EXPECT_EQ(-91, VolumeAmplitude(0.9F, false));    // -91.5
}

TEST(VolumeRule, NothingIsHeardAtZeroOrMuted) {
    EXPECT_EQ(-10000, VolumeAmplitude(0.0F, false));
    EXPECT_EQ(-10000, VolumeAmplitude(1.0F, true));
    EXPECT_EQ(-10000, VolumeAmplitude(-0.5F, false));
}

TEST(VolumeRule, ClampsToTheRange) {
    EXPECT_FLOAT_EQ(1.0F, ClampVolume(1.5F));
    EXPECT_FLOAT_EQ(0.0F, ClampVolume(-0.1F));
    EXPECT_FLOAT_EQ(0.37F, ClampVolume(0.37F));
    EXPECT_FLOAT_EQ(0.0F, ClampVolume(std::numeric_limits<float>::quiet_NaN()));
}

TEST(VolumeRule, PercentIsTruncated) {
    EXPECT_EQ(0U, VolumePercent(0.004F));
    EXPECT_EQ(0U, VolumePercent(0.0F));
    EXPECT_EQ(99U, VolumePercent(0.999F));
    EXPECT_EQ(100U, VolumePercent(1.0F));
}

TEST(HardwareRule, Names) {
    const std::vector<std::wstring> names = {L"None",  L"CUDA",        L"QuickSync",
                                             L"DXVA2", L"DXVA2Native", L"D3D11"};
    for (std::uint32_t method = 0; method < names.size(); ++method) {
        EXPECT_EQ(names[method], HardwareMethodName(method));
    }
    EXPECT_STREQ(L"Unknown", HardwareMethodName(6));
    EXPECT_STREQ(L"Unknown", HardwareMethodName(0xFFFFFFFF));
}

struct Chain {
    std::uint32_t requested;
    std::set<std::uint32_t> supported;
    std::uint32_t expected;
    std::vector<std::uint32_t> expectedProbes;
};

TEST(HardwareRule, FallbackChains) {
    const std::vector<Chain> chains = {
        {1, {3, 5}, 5, {5}}, {1, {3}, 3, {5, 3}},   {1, {}, 0, {5, 3}}, {5, {1, 3}, 3, {3}}, {5, {1}, 0, {3}},
        {2, {3, 5}, 0, {}},  {3, {1, 2, 5}, 0, {}}, {4, {3, 5}, 0, {}}, {77, {3, 5}, 0, {}},
    };
    for (const Chain& chain : chains) {
        std::vector<std::uint32_t> probes;
        const std::uint32_t found = FallbackHardwareMethod(chain.requested, [&](std::uint32_t method) {
            probes.push_back(method);
            return chain.supported.contains(method) ? 7U : 0U;
        });
        EXPECT_EQ(chain.expected, found) << "from " << chain.requested;
        EXPECT_EQ(chain.expectedProbes, probes) << "from " << chain.requested;
    }
}

TEST(HardwareRule, LargePicturesNeedD3D11) {
    EXPECT_FALSE(NeedsD3D11(3840, 2160));
    EXPECT_TRUE(NeedsD3D11(3841, 1));
    EXPECT_TRUE(NeedsD3D11(1, 2161));
    EXPECT_TRUE(NeedsD3D11(7680, 4320));
}

TEST(HardwareRule, DecoderNames) {
    for (const wchar_t* name : {L"dxva2", L"d3d11va", L"cuda", L"nvdec", L"qsv", L"h264_qsv decoder"}) {
        EXPECT_TRUE(IsHardwareDecoderName(name));
    }
    for (const wchar_t* name : {L"avcodec", L"DXVA2", L"D3D11", L""}) {
        EXPECT_FALSE(IsHardwareDecoderName(name));
    }
}

TEST(PinKindRule, ByNameAndCase) {
    EXPECT_TRUE(IsVideoPinName(L"Video"));
    EXPECT_TRUE(IsVideoPinName(L"the video pin"));
    EXPECT_TRUE(IsAudioPinName(L"AAC Audio 2"));
    EXPECT_TRUE(IsAudioPinName(L"audio"));
    EXPECT_FALSE(IsAudioPinName(L"AUDIO"));
    EXPECT_FALSE(IsVideoPinName(L"VIDEO"));
    EXPECT_FALSE(IsVideoPinName(L"Subtitle"));
    EXPECT_FALSE(IsAudioPinName(L""));
    EXPECT_TRUE(IsAudioPinName(L"Video and Audio"));
    EXPECT_TRUE(IsVideoPinName(L"Video and Audio"));
}

constexpr Time100ns kSecond = kUnitsPerSecond;

TEST(RepeatMarksRule, FirstAIsSet) {
    RepeatMarks marks;
    EXPECT_EQ(MarkChange::Set, PressMarkA(marks, 5 * kSecond));
    EXPECT_EQ((RepeatMarks{5 * kSecond, 0}), marks);
}

TEST(RepeatMarksRule, ANearItselfClearsBoth) {
    RepeatMarks marks{5 * kSecond, 9 * kSecond};
    EXPECT_EQ(MarkChange::Cleared, PressMarkA(marks, 6 * kSecond - 1));
    EXPECT_EQ(RepeatMarks{}, marks);
    marks = {5 * kSecond, 9 * kSecond};
    EXPECT_EQ(MarkChange::Cleared, PressMarkA(marks, 4 * kSecond + 1));
}

TEST(RepeatMarksRule, AOneSecondFromItselfMoves) {
    RepeatMarks marks{5 * kSecond, 9 * kSecond};
    EXPECT_EQ(MarkChange::Set, PressMarkA(marks, 6 * kSecond));
    EXPECT_EQ((RepeatMarks{6 * kSecond, 9 * kSecond}), marks);
}

TEST(RepeatMarksRule, ABehindBClearsB) {
    RepeatMarks marks{5 * kSecond, 9 * kSecond};
    EXPECT_EQ(MarkChange::Set, PressMarkA(marks, 9 * kSecond));
    EXPECT_EQ((RepeatMarks{9 * kSecond, 0}), marks);
}

TEST(RepeatMarksRule, BWithoutARepeatsFromTheStart) {
    RepeatMarks marks;
    EXPECT_EQ(MarkChange::Set, PressMarkB(marks, 8 * kSecond));
    EXPECT_EQ((RepeatMarks{1, 8 * kSecond}), marks);
}

TEST(RepeatMarksRule, BTooNearAStaysUnsetAndTheStartMarkStays) {
    RepeatMarks marks;
    EXPECT_EQ(MarkChange::None, PressMarkB(marks, kSecond + 1));
    EXPECT_EQ((RepeatMarks{1, 0}), marks);
    EXPECT_EQ(MarkChange::Set, PressMarkB(marks, kSecond + 2));
    marks = {5 * kSecond, 0};
    EXPECT_EQ(MarkChange::None, PressMarkB(marks, 6 * kSecond));
    EXPECT_EQ(MarkChange::None, PressMarkB(marks, 2 * kSecond));
    EXPECT_EQ((RepeatMarks{5 * kSecond, 0}), marks);
}

TEST(RepeatMarksRule, BNearItselfClearsBAlone) {
    RepeatMarks marks{kSecond, 9 * kSecond};
    EXPECT_EQ(MarkChange::Cleared, PressMarkB(marks, 10 * kSecond));
    EXPECT_EQ((RepeatMarks{kSecond, 0}), marks);
    marks = {kSecond, 9 * kSecond};
    EXPECT_EQ(MarkChange::Set, PressMarkB(marks, 10 * kSecond + 1));
    EXPECT_EQ((RepeatMarks{kSecond, 10 * kSecond + 1}), marks);
}

TEST(RepeatMarksRule, ARepeatNeedsBothMarksInOrder) {
    EXPECT_TRUE(HasRepeat({kRepeatFromStart, 2}));
    EXPECT_FALSE(HasRepeat({kRepeatFromStart, 1}));
    EXPECT_FALSE(HasRepeat({0, 20'000'000}));
    EXPECT_FALSE(HasRepeat({10'000'000, 0}));
    EXPECT_FALSE(HasRepeat({}));
}

TEST(RepeatMarksRule, TheEndIsReachedFiftyMillisecondsBeforeB) {
    constexpr RepeatMarks kMarks{10'000'000, 50'000'000};
    EXPECT_FALSE(ReachesRepeatEnd(kMarks, 49'499'999));
    EXPECT_TRUE(ReachesRepeatEnd(kMarks, 49'500'000));
    EXPECT_TRUE(ReachesRepeatEnd(kMarks, 90'000'000));
    EXPECT_TRUE(ReachesRepeatEnd({kRepeatFromStart, 50'000'000}, 49'500'000));
}

TEST(RepeatMarksRule, WithoutBothMarksInOrderNothingRepeats) {
    EXPECT_FALSE(ReachesRepeatEnd({}, 50'000'000));
    EXPECT_FALSE(ReachesRepeatEnd({10'000'000, 0}, 50'000'000));
    EXPECT_FALSE(ReachesRepeatEnd({0, 20'000'000}, 50'000'000));
    EXPECT_FALSE(ReachesRepeatEnd({20'000'000, 20'000'000}, 50'000'000));
    EXPECT_FALSE(ReachesRepeatEnd({30'000'000, 20'000'000}, 50'000'000));
}

TEST(RepeatMarksRule, TwoJumpsAreHalfASecondApart) {
    EXPECT_FALSE(MayRepeatAgain(1'000, 1'000));
    EXPECT_FALSE(MayRepeatAgain(1'000, 1'499));
    EXPECT_TRUE(MayRepeatAgain(1'000, 1'500));
    EXPECT_TRUE(MayRepeatAgain(0, 500));
}

TEST(ClockPositionRule, BeginsAtTheTargetAndLagsByTheLead) {
    EXPECT_EQ(0, PositionFromGraphClock({0, 0, 1.0, 60 * kSecond}));
    EXPECT_EQ(0, PositionFromGraphClock({0, 1'900'000, 1.0, 60 * kSecond}));
    EXPECT_EQ(8'000'000, PositionFromGraphClock({0, kSecond, 1.0, 60 * kSecond}));
    EXPECT_EQ(20 * kSecond, PositionFromGraphClock({20 * kSecond, 20 * kSecond, 1.0, 60 * kSecond}));
}

TEST(ClockPositionRule, RunsWithTheRate) {
    EXPECT_EQ(20 * kSecond + 16'000'000,
              PositionFromGraphClock({20 * kSecond, 21 * kSecond, 2.0, 60 * kSecond}));
    EXPECT_EQ(20 * kSecond + 4'000'000,
              PositionFromGraphClock({20 * kSecond, 21 * kSecond, 0.5, 60 * kSecond}));
}

TEST(ClockPositionRule, NeverPassesTheEnd) {
    EXPECT_EQ(60 * kSecond, PositionFromGraphClock({50 * kSecond, 90 * kSecond, 1.0, 60 * kSecond}));
    // Wine's answer after the end of the stream, at any rate.
    EXPECT_EQ(60 * kSecond, PositionFromGraphClock({50 * kSecond, 60 * kSecond, 0.5, 60 * kSecond}));
    EXPECT_EQ(898'000'000, PositionFromGraphClock({50 * kSecond, 90 * kSecond, 1.0, 0}));
}

TEST(CodecNameRule, KnownCodes) {
    EXPECT_STREQ(L"H264", KnownVideoCodecName(0x34363248)); // H264
    EXPECT_STREQ(L"H264", KnownVideoCodecName(0x34363268)); // h264
    EXPECT_STREQ(L"H264", KnownVideoCodecName(0x31435641)); // AVC1
    EXPECT_STREQ(L"H264", KnownVideoCodecName(0x31637661)); // avc1
    EXPECT_STREQ(L"HEVC", KnownVideoCodecName(0x43564548)); // HEVC
    EXPECT_STREQ(L"HEVC", KnownVideoCodecName(0x31435648)); // HVC1
    EXPECT_EQ(nullptr, KnownVideoCodecName(0x31637668));    // hvc1
    EXPECT_EQ(nullptr, KnownVideoCodecName(0));
}

TEST(CodecNameRule, CompressionCodes) {
    EXPECT_EQ("MP4V", CompressionText(0x7634706D)); // mp4v
    EXPECT_EQ("", CompressionText(0));
    EXPECT_EQ("", CompressionText(3));
    EXPECT_EQ("VC1", CompressionText(0x00316376));
    EXPECT_EQ("\x01", CompressionText(1));
}

TEST(CodecNameRule, AudioNames) {
    EXPECT_EQ(L"AAC", UpperCaseCodecName("aac"));
    EXPECT_EQ(L"PCM_S16LE", UpperCaseCodecName("pcm_s16le"));
    EXPECT_EQ(L"", UpperCaseCodecName(nullptr));
    EXPECT_EQ(std::wstring(1, wchar_t{0xE4}), UpperCaseCodecName("\xE4"));
}

} // namespace
} // namespace brindlecast

#include "subtitles/srt_to_ass.h"

#include "base/saturate.h"
#include "base/scan.h"
#include "base/strict_utf8.h"
#include "base/text.h"
#include "base/utf8.h"
#include "subtitles/subtitle_file.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace brindlecast {

namespace {

constexpr int kScriptWidth = 384;
constexpr double kScriptHeight = 288.0;
// The height that the style's lengths are meant for.
constexpr double kStyleHeight = 1080.0;
constexpr std::int32_t kUsualFontSize = 24;
constexpr std::string_view kArrow = " --> ";
constexpr std::string_view kLineBreak = "\\N";

double Scaled(double length) {
    return length * kScriptHeight / kStyleHeight;
}

// Alpha stays in front; behind it ASS wants blue, green and red.
std::uint32_t AssColour(std::uint32_t colour) {
    return (colour & 0xFF00FF00U) | (colour & 0xFFU) << 16 | (colour >> 16 & 0xFFU);
}

std::string AssHead(const SubtitleStyle& style) {
    const std::wstring_view fontName = HasUtf8Form(style.fontName) ? style.fontName : std::wstring_view();
    return WideToUtf8(FormatText(
        L"[Script Info]\n"
        L"ScriptType: v4.00+\n"
        L"WrapStyle: 0\n"
        L"ScaledBorderAndShadow: yes\n"
        L"PlayResX: %d\n"
        L"PlayResY: %g\n"
        L"\n"
        L"[V4+ Styles]\n"
        L"Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, Bold, "
        L"Italic, "
        L"Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, BorderStyle, Outline, Shadow, Alignment, "
        L"MarginL, "
        L"MarginR, MarginV, Encoding\n"
        L"Style: Default,%s,%d,&H%08X,&H000000FF,&H%08X,&H%08X,%d,%d,0,0,100,100,0,0,1,%g,%g,%d,5,5,%d,1\n"
        L"\n"
        L"[Events]\n"
        L"Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n",
        kScriptWidth, kScriptHeight, fontName, style.fontSize < 1 ? kUsualFontSize : style.fontSize,
        AssColour(style.primaryColour), AssColour(style.outlineColour), AssColour(style.shadowColour),
        style.bold ? -1 : 0, style.italic ? -1 : 0, Scaled(style.outline), Scaled(style.shadow),
        style.alignment, TruncateToInt(Scaled(style.marginBottom))));
}

// Appends a number, filled up with zeros behind its sign.
void AppendNumber(std::string& out, int number, std::size_t width) {
    std::array<char, 16> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const std::string_view text(digits.data(), static_cast<std::size_t>(end - digits.data()));
    const std::size_t signLength = number < 0 ? 1 : 0;
    out += text.substr(0, signLength);
    out.append(width - std::min(width, text.size()), '0');
    out += text.substr(signLength);
}

void AppendAssTime(std::string& out, Milliseconds time) {
    AppendNumber(out, SaturateToInt(time / 3'600'000), 1);
    out += ':';
    AppendNumber(out, static_cast<int>(time % 3'600'000 / 60'000), 2);
    out += ':';
    AppendNumber(out, static_cast<int>(time % 60'000 / 1000), 2);
    out += '.';
    AppendNumber(out, static_cast<int>(time % 1000 / 10), 2);
}

void AppendWithoutTags(std::string& out, std::string_view text) {
    while (true) {
        const std::size_t open = text.find('<');
        const std::size_t close = text.find('>', std::min(open, text.size()));
        if (close == std::string_view::npos) {
            out += text;
            return;
        }
        out += text.substr(0, open);
        text.remove_prefix(close + 1);
    }
}

// Takes the lines of a SubRip file one by one and appends an event for each cue with text.
class CueCollector {
public:
    explicit CueCollector(std::string& out) : script(out) {}

    void TakeLine(std::string_view line) {
        switch (state) {
        case State::BetweenCues:
            if (!line.empty() && IsDigit(line.front())) {
                state = State::AwaitingTiming;
            }
            break;
        case State::AwaitingTiming: TakeTiming(line); break;
        case State::CollectingText: TakeText(line); break;
        }
    }

    void End() {
        if (state == State::CollectingText && !text.empty()) {
            AppendEvent();
        }
    }

private:
    enum class State { BetweenCues, AwaitingTiming, CollectingText };

    void TakeTiming(std::string_view line) {
        const std::size_t arrow = line.find(kArrow);
        if (arrow == std::string_view::npos) {
            return;
        }
        start = ParseSrtTime(line.substr(0, arrow));
        end = ParseSrtTime(line.substr(arrow + kArrow.size()));
        text.clear();
        state = State::CollectingText;
    }

    void TakeText(std::string_view line) {
        if (line.empty()) {
            End();
            state = State::BetweenCues;
            return;
        }
        if (!text.empty()) {
            text += kLineBreak;
        }
        text += line;
    }

    void AppendEvent() {
        script += "Dialogue: 0,";
        AppendAssTime(script, start);
        script += ',';
        AppendAssTime(script, end);
        script += ",Default,,0,0,0,,";
        AppendWithoutTags(script, text);
        script += '\n';
    }

    std::string& script;
    State state = State::BetweenCues;
    Milliseconds start = 0;
    Milliseconds end = 0;
    std::string text; // its lines joined as ASS joins them
};

} // namespace

std::string ConvertSrtToAss(std::string_view content, const SubtitleStyle& style) {
    std::string script = AssHead(style);
    script.reserve(script.size() + content.size() + content.size() / 2);
    CueCollector cues(script);
    while (!content.empty()) {
        cues.TakeLine(TakeSubtitleLine(content));
    }
    cues.End();
    return script;
}

std::string FormatAssTime(Milliseconds time) {
    std::string text;
    AppendAssTime(text, time);
    return text;
}

Milliseconds ParseSrtTime(std::string_view text) {
    std::array<int, 4> parts{};
    if (ScanIntegers(text, "%d:%d:%d,%d", parts) != parts.size() &&
        ScanIntegers(text, "%d:%d:%d.%d", parts) != parts.size()) {
        return 0;
    }
    return parts[0] * Milliseconds{3'600'000} + parts[1] * Milliseconds{60'000} +
           parts[2] * Milliseconds{1000} + parts[3];
}

} // namespace brindlecast

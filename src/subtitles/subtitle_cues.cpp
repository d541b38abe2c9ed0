#include "subtitles/subtitle_cues.h"

#include "base/scan.h"
#include "base/strict_utf8.h"
#include "subtitles/subtitle_file.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

namespace brindlecast {

namespace {

constexpr std::string_view kArrow = "-->";

// Unlike times, an index is refused when it lies beyond 32 bits.
std::optional<std::int32_t> IndexOf(std::string_view line) {
    using Limits = std::numeric_limits<std::int32_t>;
    const auto number = TakeInteger(line);
    if (!number || *number < Limits::min() || *number > Limits::max()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(*number);
}

// Takes the lines of a SubRip file one by one and appends each cue with text.
class CueReader {
public:
    explicit CueReader(std::vector<SubtitleCue>& out) : cues(out) {}

    void TakeLine(std::string_view line) {
        switch (state) {
        case State::AwaitingIndex:
            if (const auto index = IndexOf(line)) {
                cue.index = *index;
                state = State::AwaitingTiming;
            }
            break;
        case State::AwaitingTiming: TakeTiming(line); break;
        case State::CollectingText: TakeText(line); break;
        }
    }

    void End() {
        if (state == State::CollectingText && !cue.text.empty()) {
            cues.push_back(std::move(cue));
        }
        state = State::AwaitingIndex;
    }

private:
    enum class State { AwaitingIndex, AwaitingTiming, CollectingText };

    void TakeTiming(std::string_view line) {
        const std::size_t arrow = line.find(kArrow);
        if (arrow == std::string_view::npos) {
            state = State::AwaitingIndex;
            return;
        }
        // White space on either side of the arrow is passed over when the times are read.
        cue.startMs = ParseCueTime(line.substr(0, arrow));
        cue.endMs = ParseCueTime(line.substr(arrow + kArrow.size()));
        cue.text.clear();
        state = State::CollectingText;
    }

    void TakeText(std::string_view line) {
        if (line.empty()) {
            End();
            return;
        }
        if (!cue.text.empty()) {
            cue.text += L'\n';
        }
        cue.text += StrictUtf8ToWide(line);
    }

    std::vector<SubtitleCue>& cues;
    State state = State::AwaitingIndex;
    SubtitleCue cue;
};

} // namespace

bool LoadSubtitleCues(const std::wstring& path, std::vector<SubtitleCue>& cues) {
    cues.clear();
    const std::optional<std::string> bytes = ReadSubtitleFile(path);
    if (!bytes) {
        return false;
    }
    ParseSubtitleCues(WithoutUtf8Mark(*bytes), cues);
    return !cues.empty();
}

void ParseSubtitleCues(std::string_view content, std::vector<SubtitleCue>& cues) {
    CueReader reader(cues);
    while (!content.empty()) {
        reader.TakeLine(TakeSubtitleLine(content));
    }
    reader.End();
}

Milliseconds ParseCueTime(std::string_view text) {
    std::string withPoints(text);
    std::ranges::replace(withPoints, ',', '.');
    std::array<int, 4> parts{};
    if (ScanIntegers(withPoints, "%d:%d:%d.%d", parts) != parts.size()) {
        return 0;
    }
    return ((Milliseconds{parts[0]} * 60 + parts[1]) * 60 + parts[2]) * 1000 + parts[3];
}

} // namespace brindlecast

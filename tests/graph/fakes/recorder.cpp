#include "tests/graph/fakes/recorder.h"

#include <atomic>
#include <deque>
#include <map>
#include <mutex>
#include <string>

namespace {

struct Line {
    RecordKind kind;
    std::wstring text;
};

struct Recorder {
    std::mutex mutex;
    std::deque<Line> lines;
    std::map<std::string, long> numbers;
    std::map<std::string, std::wstring> texts;
    std::atomic<long> living{0};
};

Recorder& Shared() {
    static Recorder recorder;
    return recorder;
}

} // namespace

void RecorderAdd(RecordKind kind, const wchar_t* line) {
    const std::lock_guard lock(Shared().mutex);
    Shared().lines.push_back({kind, line});
}

unsigned RecorderCount() {
    const std::lock_guard lock(Shared().mutex);
    return static_cast<unsigned>(Shared().lines.size());
}

RecordKind RecorderKindAt(unsigned index) {
    const std::lock_guard lock(Shared().mutex);
    return Shared().lines.at(index).kind;
}

const wchar_t* RecorderLineAt(unsigned index) {
    const std::lock_guard lock(Shared().mutex);
    return Shared().lines.at(index).text.c_str();
}

void RecorderClearLines() {
    const std::lock_guard lock(Shared().mutex);
    Shared().lines.clear();
}

void RecorderReset() {
    const std::lock_guard lock(Shared().mutex);
    Shared().lines.clear();
    Shared().numbers.clear();
    Shared().texts.clear();
}

void RecorderSetNumber(const char* key, long value) {
    const std::lock_guard lock(Shared().mutex);
    Shared().numbers[key] = value;
}

long RecorderNumber(const char* key, long absent) {
    const std::lock_guard lock(Shared().mutex);
    const auto found = Shared().numbers.find(key);
    return found != Shared().numbers.end() ? found->second : absent;
}

void RecorderSetText(const char* key, const wchar_t* value) {
    const std::lock_guard lock(Shared().mutex);
    Shared().texts[key] = value;
}

const wchar_t* RecorderText(const char* key) {
    const std::lock_guard lock(Shared().mutex);
    const auto found = Shared().texts.find(key);
    return found != Shared().texts.end() ? found->second.c_str() : nullptr;
}

void RecorderObjectMade() {
    ++Shared().living;
}
void RecorderObjectGone() {
    --Shared().living;
}
long RecorderLiving() {
    return Shared().living;
}

#pragma once

// What the fake modules share with the test: a log of the calls they got, and a script of the answers they
// give. Every module has its own runtime library, so only plain C types cross this border. Any thread.

#ifdef RECORDER_EXPORTS
#define RECORDER_API extern "C" __declspec(dllexport)
#else
#define RECORDER_API extern "C" __declspec(dllimport)
#endif

// What kind of call a line is: tests compare the whole list of one kind.
enum RecordKind : int {
    kRecordCall = 0,  // something was set, joined, connected, loaded
    kRecordState = 1, // Run, Pause, Stop, leaving the graph: the graph manager chooses their order
    kRecordQuery = 2, // changes nothing
};

RECORDER_API void RecorderAdd(RecordKind kind, const wchar_t* line);
RECORDER_API unsigned RecorderCount();
RECORDER_API RecordKind RecorderKindAt(unsigned index);
// Valid until the next RecorderReset.
RECORDER_API const wchar_t* RecorderLineAt(unsigned index);
// Forgets lines and script, but not how many objects live.
RECORDER_API void RecorderReset();
RECORDER_API void RecorderClearLines();

RECORDER_API void RecorderSetNumber(const char* key, long value);
RECORDER_API long RecorderNumber(const char* key, long absent);
RECORDER_API void RecorderSetText(const char* key, const wchar_t* value);
// Null when absent; valid until the text is set again.
RECORDER_API const wchar_t* RecorderText(const char* key);

// Filters of the fakes that exist now.
RECORDER_API void RecorderObjectMade();
RECORDER_API void RecorderObjectGone();
RECORDER_API long RecorderLiving();

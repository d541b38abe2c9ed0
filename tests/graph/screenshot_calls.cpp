#include "tests/graph/screenshot_calls.h"

#include "base/win32/unique_handle.h"
#include "tests/graph/import_swap.h"

#include <windows.h>

#include <gdiplus.h>
#include <objbase.h>

#include <array>

namespace brindlecast::testing {

namespace {

using Gdiplus::EncoderParameters;
using Status = Gdiplus::GpStatus;

// Plain functions stand in for the system's, so what they know lies outside of any object.
struct GdiplusCalls {
    Lines steps;
    std::vector<std::vector<GdiplusRecording::Parameter>> saves;
    Status(WINGDIPAPI* start)(ULONG_PTR*, const Gdiplus::GdiplusStartupInput*,
                              Gdiplus::GdiplusStartupOutput*) = nullptr;
    void(WINGDIPAPI* shutDown)(ULONG_PTR) = nullptr;
    Status(WINGDIPAPI* save)(Gdiplus::GpImage*, const WCHAR*, const CLSID*,
                             const EncoderParameters*) = nullptr;
    Status(WINGDIPAPI* dispose)(Gdiplus::GpImage*) = nullptr;
};
GdiplusCalls gdiplusCalls;

std::vector<GdiplusRecording::Parameter> Read(const EncoderParameters* parameters) {
    std::vector<GdiplusRecording::Parameter> read;
    for (UINT i = 0; parameters != nullptr && i < parameters->Count; ++i) {
        const Gdiplus::EncoderParameter& parameter = parameters->Parameter[i];
        std::array<wchar_t, 64> name{};
        StringFromGUID2(parameter.Guid, name.data(), static_cast<int>(name.size()));
        const auto* values = static_cast<const ULONG*>(parameter.Value);
        read.push_back({name.data(), parameter.Type, {values, values + parameter.NumberOfValues}});
    }
    return read;
}

Status WINGDIPAPI Start(ULONG_PTR* token, const Gdiplus::GdiplusStartupInput* input,
                        Gdiplus::GdiplusStartupOutput* output) {
    gdiplusCalls.steps.push_back(L"start");
    return gdiplusCalls.start(token, input, output);
}

void WINGDIPAPI ShutDown(ULONG_PTR token) {
    gdiplusCalls.steps.push_back(L"shut down");
    gdiplusCalls.shutDown(token);
}

Status WINGDIPAPI Save(Gdiplus::GpImage* image, const WCHAR* path, const CLSID* encoder,
                       const EncoderParameters* parameters) {
    gdiplusCalls.steps.push_back(L"save");
    gdiplusCalls.saves.push_back(Read(parameters));
    return gdiplusCalls.save(image, path, encoder, parameters);
}

Status WINGDIPAPI Dispose(Gdiplus::GpImage* image) {
    gdiplusCalls.steps.push_back(L"dispose");
    return gdiplusCalls.dispose(image);
}

struct WriteCalls {
    WriteRecording::Outcome outcome = WriteRecording::kEverything;
    std::wstring watched;
    DWORD readersError = 0;
    decltype(&::WriteFile) write = nullptr;
};
WriteCalls writeCalls;

BOOL WINAPI Write(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    if (!writeCalls.watched.empty()) {
        const UniqueFile reader(CreateFileW(writeCalls.watched.c_str(), GENERIC_READ,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                            OPEN_EXISTING, 0, nullptr));
        writeCalls.readersError = reader ? 0 : GetLastError();
    }
    if (writeCalls.outcome == WriteRecording::kNothing) {
        *written = size;
        return FALSE;
    }
    const DWORD less = writeCalls.outcome == WriteRecording::kOneByteLess ? 1 : 0;
    return writeCalls.write(file, bytes, size - less, written, overlapped);
}

template <class Function>
void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

template <class Function>
void Keep(Function*& original, const ImportSwap& swap) {
    ASSERT_NE(nullptr, swap.Original());
    original = reinterpret_cast<Function*>(swap.Original());
}

} // namespace

struct GdiplusRecording::Swaps {
    ImportSwap start{"gdiplus.dll", "GdiplusStartup", Address(&Start)};
    ImportSwap shutDown{"gdiplus.dll", "GdiplusShutdown", Address(&ShutDown)};
    ImportSwap save{"gdiplus.dll", "GdipSaveImageToFile", Address(&Save)};
    ImportSwap dispose{"gdiplus.dll", "GdipDisposeImage", Address(&Dispose)};
};

GdiplusRecording::GdiplusRecording() : swaps(std::make_unique<Swaps>()) {
    gdiplusCalls = {};
    Keep(gdiplusCalls.start, swaps->start);
    Keep(gdiplusCalls.shutDown, swaps->shutDown);
    Keep(gdiplusCalls.save, swaps->save);
    Keep(gdiplusCalls.dispose, swaps->dispose);
}

GdiplusRecording::~GdiplusRecording() = default;

const Lines& GdiplusRecording::Steps() const {
    return gdiplusCalls.steps;
}

const std::vector<std::vector<GdiplusRecording::Parameter>>& GdiplusRecording::Saves() const {
    return gdiplusCalls.saves;
}

void GdiplusRecording::Clear() const {
    gdiplusCalls.steps.clear();
    gdiplusCalls.saves.clear();
}

struct WriteRecording::Swaps {
    ImportSwap write{"kernel32.dll", "WriteFile", Address(&Write)};
};

WriteRecording::WriteRecording(Outcome outcome, const std::wstring& watched)
    : swaps(std::make_unique<Swaps>()) {
    writeCalls = {outcome, watched};
    Keep(writeCalls.write, swaps->write);
}

WriteRecording::~WriteRecording() = default;

unsigned long WriteRecording::ReadersError() const {
    return writeCalls.readersError;
}

} // namespace brindlecast::testing

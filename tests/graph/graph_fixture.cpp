#include "tests/graph/graph_fixture.h"

#include "base/trace.h"
#include "base/utf8.h"
#include "base/win32/unique_handle.h"
#include "base/win32/wine.h"

#include <objbase.h>
#include <shlwapi.h>
#include <uuids.h>

#include <algorithm>
#include <array>

namespace brindlecast::testing {

namespace {

constexpr std::wstring_view kTracePrefix = L"[Brindlecast] ";

std::wstring Directory() {
    std::array<wchar_t, MAX_PATH> path{};
    GetModuleFileNameW(nullptr, path.data(), MAX_PATH);
    PathRemoveFileSpecW(path.data());
    return path.data();
}

std::wstring GraphTestModulePath(const std::wstring& fileName) {
    return Directory() + L"\\" + fileName;
}

// Puts back the modules that a run which crashed has left hidden; once a process.
void RestoreHiddenModules() {
    static bool restored = false;
    if (restored) {
        return;
    }
    restored = true;
    constexpr std::wstring_view kSuffix = L".hidden";
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(GraphTestModulePath(L"*.hidden").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        const std::wstring path = GraphTestModulePath(found.cFileName);
        EXPECT_TRUE(MoveFileExW(path.c_str(), path.substr(0, path.size() - kSuffix.size()).c_str(),
                                MOVEFILE_REPLACE_EXISTING));
    } while (FindNextFileW(search, &found) != FALSE);
    FindClose(search);
}

std::wstring WithoutDirectory(std::wstring line) {
    const std::wstring directory = Directory();
    const auto at = line.find(directory);
    return at == std::wstring::npos ? line : line.replace(at, directory.size(), L"<dir>");
}

// A class whose objects can't be made, as on a machine without a sound device.
class FailingFactory final : public IClassFactory {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (iid != __uuidof(IUnknown) && iid != __uuidof(IClassFactory)) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown*, REFIID, void** out) override {
        *out = nullptr;
        return E_INVALIDARG;
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

ComPtr<IClassFactory> FakeSoundFactory() {
    // Stays loaded: the platform keeps the factory as long as it likes.
    static const HMODULE module = LoadLibraryW(GraphTestModulePath(L"FakeAudioRenderer.ax").c_str());
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, LPVOID*);
    ComPtr<IClassFactory> factory;
    FindFunction<GetClassObject>(module, "DllGetClassObject")(CLSID_DSoundRender, IID_PPV_ARGS(&factory));
    return factory;
}

DWORD Register(const CLSID& clsid, SoundRenderer renderer) {
    static FailingFactory failing;
    const ComPtr<IClassFactory> working = FakeSoundFactory();
    IClassFactory* factory = renderer == SoundRenderer::Works ? working.Get() : &failing;
    DWORD cookie = 0;
    const HRESULT result =
        CoRegisterClassObject(clsid, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
    EXPECT_EQ(S_OK, result);
    return cookie;
}

} // namespace

Lines Join(std::initializer_list<Lines> lists) {
    Lines joined;
    for (const Lines& list : lists) {
        joined.insert(joined.end(), list.begin(), list.end());
    }
    return joined;
}

void ExpectLines(const Lines& expected, const Lines& actual) {
    const auto [wanted, got] = std::ranges::mismatch(expected, actual);
    if (wanted == expected.end() && got == actual.end()) {
        return;
    }
    // What both end with is not shown.
    auto wantedEnd = expected.end();
    auto gotEnd = actual.end();
    while (wantedEnd != wanted && gotEnd != got && *(wantedEnd - 1) == *(gotEnd - 1)) {
        --wantedEnd;
        --gotEnd;
    }
    std::wstring message;
    const auto contextBegin = got - std::min<std::ptrdiff_t>(got - actual.begin(), 5);
    for (auto line = contextBegin; line != got; ++line) {
        message += L"      " + *line + L"\n";
    }
    for (auto line = wanted; line != wantedEnd; ++line) {
        message += L"  -   " + *line + L"\n";
    }
    for (auto line = got; line != gotEnd; ++line) {
        message += L"  +   " + *line + L"\n";
    }
    ADD_FAILURE() << "expected (-) and seen (+) from line " << (got - actual.begin() + 1) << ":\n"
                  << WideToUtf8(message);
}

GraphTest::GraphTest() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    RestoreHiddenModules();
    RecorderReset();
    SetTraceSink([](std::wstring_view line) {
        // A line without prefix or newline shows as it is, and fails the comparison.
        std::wstring text(line);
        if (text.starts_with(kTracePrefix) && text.ends_with(L'\n')) {
            text = L"> " + text.substr(kTracePrefix.size(), text.size() - kTracePrefix.size() - 1);
        }
        RecorderAdd(kRecordCall, text.c_str());
    });
    RegisterSound(SoundRenderer::Works, SoundRenderer::Works);
    SetText("LAVSplitter.pins", kFilmPins);
    SetText("LAVSplitter.streams", L"video:1:H.264;audio:1:Korean");
    SetText("LAVSplitter.keyFrames", L"0,20000000,40000000");
    SetNumber("MpcVideoRenderer64.width", 1920);
    SetNumber("MpcVideoRenderer64.height", 1080);
    host = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1000, 1000, nullptr, nullptr, nullptr, nullptr);
    engine = std::make_unique<PlayerEngine>(settings);
    engine->videoHost = host;
}

GraphTest::~GraphTest() {
    SetTraceSink({});
    SetWineAnswerForTest(WineAnswer::Real);
    CoUninitialize();
}

void GraphTest::TearDown() {
    engine.reset();
    RevokeClasses();
    DestroyWindow(host);
    EXPECT_EQ(0, RecorderLiving()) << "a filter outlived its graph";
    for (const std::wstring& fileName : hidden) {
        UnloadModule(fileName);
        EXPECT_TRUE(MoveFileExW(ModulePath(fileName + L".hidden").c_str(), ModulePath(fileName).c_str(),
                                MOVEFILE_REPLACE_EXISTING));
    }
}

Lines GraphTest::Calls() {
    Lines lines;
    for (unsigned i = 0; i < RecorderCount(); ++i) {
        if (RecorderKindAt(i) == kRecordCall) {
            lines.push_back(WithoutDirectory(RecorderLineAt(i)));
        }
    }
    return lines;
}

Lines GraphTest::CallsOf(const std::wstring& prefix) {
    Lines lines = Calls();
    std::erase_if(lines, [&](const std::wstring& line) { return !line.starts_with(prefix); });
    return lines;
}

Lines GraphTest::QueriesOf(const std::wstring& prefix) {
    Lines lines;
    for (unsigned i = 0; i < RecorderCount(); ++i) {
        const std::wstring line = RecorderLineAt(i);
        if (RecorderKindAt(i) == kRecordQuery && line.starts_with(prefix)) {
            lines.push_back(line);
        }
    }
    return lines;
}

Lines GraphTest::CallsAndStates() {
    Lines lines;
    for (unsigned i = 0; i < RecorderCount(); ++i) {
        if (RecorderKindAt(i) != kRecordQuery) {
            lines.push_back(WithoutDirectory(RecorderLineAt(i)));
        }
    }
    return lines;
}

std::size_t GraphTest::CountOf(const Lines& lines, const std::wstring& line) {
    return static_cast<std::size_t>(std::ranges::count(lines, line));
}

Lines GraphTest::StatesOf(const std::wstring& module) {
    Lines states;
    const std::wstring prefix = module + L".";
    for (unsigned i = 0; i < RecorderCount(); ++i) {
        const std::wstring line = RecorderLineAt(i);
        if (RecorderKindAt(i) == kRecordState && line.starts_with(prefix)) {
            states.push_back(line.substr(prefix.size()));
        }
    }
    return states;
}

std::wstring GraphTest::ModulePath(const std::wstring& fileName) {
    return GraphTestModulePath(fileName);
}

void GraphTest::UnloadModule(const std::wstring& fileName) {
    // Earlier tests left references behind, as the engine does; a loaded module would be found although its
    // file is gone.
    const std::wstring path = ModulePath(fileName);
    for (HMODULE module = GetModuleHandleW(path.c_str()); module != nullptr;
         module = GetModuleHandleW(path.c_str())) {
        FreeLibrary(module);
    }
}

void GraphTest::HideModule(const std::wstring& fileName) {
    UnloadModule(fileName);
    ASSERT_TRUE(MoveFileExW(ModulePath(fileName).c_str(), ModulePath(fileName + L".hidden").c_str(),
                            MOVEFILE_REPLACE_EXISTING));
    hidden.push_back(fileName);
}

void GraphTest::ReplaceModule(const std::wstring& fileName, const std::wstring& source) {
    HideModule(fileName);
    ASSERT_TRUE(CopyFileW(ModulePath(source).c_str(), ModulePath(fileName).c_str(), FALSE));
}

void GraphTest::RegisterSound(SoundRenderer directSound, SoundRenderer waveOut) {
    RevokeClasses();
    directSoundCookie = Register(CLSID_DSoundRender, directSound);
    waveOutCookie = Register(CLSID_AudioRender, waveOut);
}

void GraphTest::RegisterFailingGraph() {
    graphCookie = Register(CLSID_FilterGraph, SoundRenderer::Fails);
}

void GraphTest::RevokeClasses() {
    for (DWORD* cookie : {&directSoundCookie, &waveOutCookie, &graphCookie}) {
        if (*cookie != 0) {
            CoRevokeClassObject(*cookie);
            *cookie = 0;
        }
    }
}

} // namespace brindlecast::testing

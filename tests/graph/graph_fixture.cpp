#include "tests/graph/graph_fixture.h"

#include "base/text.h"
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
    std::wstring message;
    const auto contextBegin = got - std::min<std::ptrdiff_t>(got - actual.begin(), 5);
    for (auto line = contextBegin; line != got; ++line) {
        message += L"      " + *line + L"\n";
    }
    for (auto line = wanted; line != expected.end(); ++line) {
        message += L"  -   " + *line + L"\n";
    }
    for (auto line = got; line != actual.end(); ++line) {
        message += L"  +   " + *line + L"\n";
    }
    ADD_FAILURE() << "expected (-) and seen (+) from line " << (got - actual.begin() + 1) << ":\n"
                  << WideToUtf8(message);
}

GraphTest::GraphTest() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
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

namespace expected {

Lines RendererStart() {
    return {L"> Loaded filter from: <dir>\\MpcVideoRenderer64.ax",
            L"MpcVideoRenderer64.joins the graph as MPC Video Renderer",
            L"MpcVideoRenderer64.Flt_SetBool(useD3D11, 1)",
            L"MpcVideoRenderer64.Flt_SetInt(presentationType, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(vsync, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(vBlankBeforePresent, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(adjustPresentTime, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(vpScaling, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(lessRedraws, 1)",
            L"MpcVideoRenderer64.Flt_SetBool(d3dFullscreenControl, 0)",
            L"MpcVideoRenderer64.Flt_SetInt(chromaUpsampling, 0)",
            L"MpcVideoRenderer64.Flt_SetInt(upscaler, 0)",
            L"MpcVideoRenderer64.Flt_SetInt(downscaler, 0)",
            L"MpcVideoRenderer64.SetCallback11(callback)"};
}

Lines SplitterStart(const std::wstring& path) {
    return {L"> Loaded filter from: <dir>\\LAVSplitter.ax",        L"LAVSplitter.SetRuntimeConfig(1)",
            L"LAVSplitter.SetPreferredLanguages(kor,eng,jpn)",     L"LAVSplitter.SetTrayIcon(0)",
            L"LAVSplitter.joins the graph as LAV Splitter Source", L"LAVSplitter.Load(" + path + L", null)"};
}

Lines ThreeKeyFrames() {
    return {L"LAVSplitter.GetKeyFrameCount", L"LAVSplitter.GetKeyFrames(media time, 3)",
            L"> Keyframes found: 3", L"> Keyframes: 0.00, 2.00, 4.00"};
}

Lines VideoDecoderStart(int method, const wchar_t* methodName) {
    const std::wstring number = std::to_wstring(method);
    Lines lines = {L"> Loaded filter from: <dir>\\LAVVideo.ax", L"LAVVideo.SetRuntimeConfig(1)",
                   L"> ConfigureLAVVideo: HWAccel=" + number};
    if (method != 0) {
        lines.push_back(L"LAVVideo.CheckHWAccelSupport(" + number + L")");
        lines.push_back(L"> HWAccel " + number + L" supported (status=2)");
    }
    return Join({lines,
                 {L"LAVVideo.SetHWAccel(" + number + L")", L"LAVVideo.GetHWAccelNumDevices(" + number + L")",
                  L"> HWAccel=" + std::wstring(methodName) + L", Available devices=0",
                  L"LAVVideo.GetHWAccelDeviceIndex(" + number + L")",
                  L"> Current HWAccel device index=7 (ID=0xBEEF)"},
                 VideoDecoderSettings(),
                 {L"LAVVideo.joins the graph as LAV Video Decoder"}});
}

Lines VideoDecoderSettings() {
    Lines lines = {L"LAVVideo.SetHWAccelCodec(0, 1)",
                   L"LAVVideo.SetHWAccelCodec(6, 1)",
                   L"LAVVideo.SetHWAccelCodec(7, 1)",
                   L"LAVVideo.SetHWAccelCodec(9, 1)",
                   L"> HW Codec settings - H264=1, HEVC=1, VP9=1, AV1=1",
                   L"LAVVideo.SetNumThreads(0)",
                   L"LAVVideo.SetTrayIcon(0)"};
    for (int format = 0; format <= 17; ++format) {
        lines.push_back(FormatText(L"LAVVideo.SetPixelFormat(%d, 1)", format));
    }
    lines.push_back(L"LAVVideo.SetHWAccelResolutionFlags(7)");
    for (int codec = 0; codec <= 63; ++codec) {
        lines.push_back(FormatText(L"LAVVideo.SetFormatConfiguration(%d, 1)", codec));
    }
    return lines;
}

Lines AudioDecoderStart() {
    return {L"> Loaded filter from: <dir>\\LAVAudio.ax", L"LAVAudio.SetRuntimeConfig(1)",
            L"LAVAudio.SetTrayIcon(0)", L"LAVAudio.joins the graph as LAV Audio Decoder"};
}

Lines SwitcherStart() {
    return {L"> Loaded filter from: <dir>\\AudioSwitcher.ax",
            L"AudioSwitcher.joins the graph as AudioSwitcher",
            L"AudioSwitcher.SetNormalizeBoost2(1, 300, 1, 0)"};
}

Lines SoundStart() {
    return {L"AudioRenderer.joins the graph as DirectSound Renderer"};
}

Lines Priming() {
    // Wine's graph manager seeks to where it began when it is stopped from running or paused.
    return {L"LAVSplitter.SetPositions(0, 1, 0)"};
}

Lines AudioChain() {
    return {L"LAVSplitter.Audio connected to LAV Audio Decoder",
            L"LAVAudio.Output connected to AudioSwitcher",
            L"AudioSwitcher.Output connected to DirectSound Renderer"};
}

Lines VideoPin() {
    return {L"> Rendering pin: Video", L"LAVSplitter.Video connected to LAV Video Decoder",
            L"LAVVideo.Output connected to MPC Video Renderer", L"> Successfully rendered pin: Video"};
}

Lines GraphEnd(int amplitude) {
    return {L"AudioRenderer.put_Volume(" + std::to_wstring(amplitude) + L")",
            L"MpcVideoRenderer64.put_Owner(window)", L"MpcVideoRenderer64.put_MessageDrain(window)",
            L"MpcVideoRenderer64.SetDestinationPosition(0, 218, 1000, 562)",
            L"MpcVideoRenderer64.SetWindowPosition(0, 0, 1000, 1000)"};
}

Lines Close() {
    return {L"LAVSplitter.SetPositions(0, 1, 0)", L"MpcVideoRenderer64.put_Visible(0)",
            L"MpcVideoRenderer64.put_Owner(0)"};
}

Lines FilmBuild(int method, const wchar_t* methodName) {
    return Join({RendererStart(),
                 SplitterStart(),
                 ThreeKeyFrames(),
                 {L"> Detected video resolution: 1920x1080"},
                 VideoDecoderStart(method, methodName),
                 AudioDecoderStart(),
                 SwitcherStart(),
                 SoundStart(),
                 Priming(),
                 AudioChain(),
                 VideoPin(),
                 {L"> Connection status - Video: 1, Audio: 1"},
                 GraphEnd()});
}

} // namespace expected

} // namespace brindlecast::testing

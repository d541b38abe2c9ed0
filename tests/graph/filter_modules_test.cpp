#include "filters/include/lav_audio.h"
#include "filters/include/lav_video.h"
#include "tests/graph/graph_fixture.h"

// Loading one filter, and the references that it leaves.

namespace brindlecast::testing {
namespace {

// Never to be touched.
IBaseFilter* const kStale = reinterpret_cast<IBaseFilter*>(std::uintptr_t{0x10});

class FilterModules : public GraphTest {
protected:
    FilterModules() {
        for (const wchar_t* file : {L"LAVVideo.ax", L"AudioSwitcher.ax", L"LAVSplitter.ax", L"LAVAudio.ax",
                                    L"MpcVideoRenderer64.ax"}) {
            UnloadModule(file); // what earlier tests left
        }
    }
    static bool IsLoaded(const std::wstring& file) {
        return GetModuleHandleW(ModulePath(file).c_str()) != nullptr;
    }
    // How many references there are to a module, all of which are dropped.
    static int DropReferences(const std::wstring& file) {
        const std::wstring path = ModulePath(file);
        int count = 0;
        for (HMODULE module = GetModuleHandleW(path.c_str()); module != nullptr;
             module = GetModuleHandleW(path.c_str())) {
            FreeLibrary(module);
            ++count;
        }
        return count;
    }
    void ExpectFails(HRESULT result, const std::wstring& file, const CLSID& clsid, const Lines& lines) {
        IBaseFilter* filter = kStale;
        ClearCalls();
        EXPECT_EQ(result, engine->LoadFilterFromModule(ModulePath(file), clsid, &filter));
        EXPECT_EQ(nullptr, filter);
        EXPECT_EQ(lines, Calls());
        EXPECT_FALSE(IsLoaded(file));
    }
};

TEST_F(FilterModules, WithoutAPlaceForTheFilterNothingIsLoaded) {
    EXPECT_EQ(E_POINTER, engine->LoadFilterFromModule(ModulePath(L"LAVVideo.ax"), kClsidLavVideo, nullptr));
    EXPECT_FALSE(IsLoaded(L"LAVVideo.ax"));
    EXPECT_EQ(Lines{}, Calls());
}

TEST_F(FilterModules, AMissingFileIsAnsweredByTheSystemsCode) {
    ExpectFails(static_cast<HRESULT>(0x8007007E), L"none.ax", kClsidLavVideo,
                {L"> Failed to load: <dir>\\none.ax (error=126)"});
}

TEST_F(FilterModules, AFailureLeavesNoReferenceAndNoPointer) {
    ExpectFails(CLASS_E_CLASSNOTAVAILABLE, L"LAVVideo.ax", CLSID_NULL,
                {L"> DllGetClassObject failed: 0x80040111"});
    SetNumber("LAVVideo.classObjectIsNull", 1);
    ExpectFails(E_UNEXPECTED, L"LAVVideo.ax", kClsidLavVideo, {L"> DllGetClassObject failed: 0x8000FFFF"});
    SetNumber("LAVVideo.classObjectIsNull", 0);
    SetNumber("LAVVideo.create", E_ACCESSDENIED);
    ExpectFails(E_ACCESSDENIED, L"LAVVideo.ax", kClsidLavVideo, {L"> CreateInstance failed: 0x80070005"});
    SetNumber("LAVVideo.create", 0);
    SetNumber("LAVVideo.createWrites", 1);
    ExpectFails(E_FAIL, L"LAVVideo.ax", kClsidLavVideo, {L"> CreateInstance failed: 0x80004005"});
    EXPECT_EQ(nullptr, engine->videoModule);
}

TEST_F(FilterModules, AFileWithoutEntryPointFailsInSilence) {
    ReplaceModule(L"LAVVideo.ax", L"fake_recorder.dll");
    ExpectFails(E_FAIL, L"LAVVideo.ax", kClsidLavVideo, {});
}

TEST_F(FilterModules, AFailureKeepsTheModuleOfBefore) {
    ComPtr<IBaseFilter> filter;
    ASSERT_EQ(S_OK, engine->LoadFilterFromModule(ModulePath(L"LAVVideo.ax"), kClsidLavVideo,
                                                 filter.ReleaseAndGetAddressOf()));
    const HMODULE module = engine->videoModule;
    filter.Reset();
    SetNumber("LAVVideo.create", E_FAIL);
    EXPECT_EQ(E_FAIL, engine->LoadFilterFromModule(ModulePath(L"LAVVideo.ax"), kClsidLavVideo,
                                                   filter.ReleaseAndGetAddressOf()));
    EXPECT_EQ(module, engine->videoModule);
    EXPECT_EQ(1, DropReferences(L"LAVVideo.ax"));
    engine->videoModule = nullptr; // its reference was just taken away
}

TEST_F(FilterModules, EachModuleWithASlotKeepsOneReference) {
    struct Row {
        const wchar_t* file;
        const CLSID& clsid;
        HMODULE PlayerEngine::*slot;
    };
    for (const Row& row :
         {Row{L"LAVSplitter.ax", kClsidLavSplitterSource, &PlayerEngine::splitterModule},
          Row{L"LAVVideo.ax", kClsidLavVideo, &PlayerEngine::videoModule},
          Row{L"LAVAudio.ax", kClsidLavAudio, &PlayerEngine::audioModule},
          Row{L"MpcVideoRenderer64.ax", kClsidMpcVideoRenderer, &PlayerEngine::rendererModule}}) {
        for (int time = 0; time < 3; ++time) {
            ComPtr<IBaseFilter> filter;
            ClearCalls();
            EXPECT_EQ(S_OK, engine->LoadFilterFromModule(ModulePath(row.file), row.clsid,
                                                         filter.ReleaseAndGetAddressOf()));
            EXPECT_NE(nullptr, filter);
            EXPECT_EQ((Lines{L"> Loaded filter from: <dir>\\" + std::wstring(row.file)}), Calls());
        }
        EXPECT_EQ(GetModuleHandleW(ModulePath(row.file).c_str()), engine.get()->*row.slot);
        EXPECT_EQ(1, DropReferences(row.file));
        engine.get()->*row.slot = nullptr; // its reference was just taken away
    }
}

TEST_F(FilterModules, AModuleWithoutSlotKeepsOneMoreReferenceEachTime) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(engine->OpenFile(kFilm));
    }
    engine->CloseGraph();
    EXPECT_EQ(3, DropReferences(L"AudioSwitcher.ax"));
    EXPECT_EQ(nullptr, engine->switcherModule);
    EXPECT_EQ(1, DropReferences(L"LAVVideo.ax"));
    engine->videoModule = nullptr; // its reference was just taken away
}

} // namespace
} // namespace brindlecast::testing

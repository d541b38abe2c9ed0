#include "tests/graph/graph_fixture.h"

#include <algorithm>

// Which hardware method the decoder is asked about, and which it is given.

namespace brindlecast::testing {
namespace {

class HardwareMethod : public GraphTest {
protected:
    void Ask(std::uint32_t method) { settings.values[L"LAV_HWAccel"] = method; }
    // The calls and lines of the video decoder's set-up up to its codec switches.
    Lines Choice() {
        engine->CloseGraph();
        ClearCalls();
        EXPECT_TRUE(engine->OpenFile(kFilm));
        const Lines all = Calls();
        const auto begin = std::ranges::find(all, L"> Loaded filter from: <dir>\\LAVVideo.ax");
        const auto end = std::ranges::find(all, L"LAVVideo.SetHWAccelCodec(0, 1)");
        if (begin == all.end() || end < begin) {
            ADD_FAILURE() << "the decoder was not set up";
            return {};
        }
        return Lines(begin + 1, end);
    }
    static Lines Asked(std::uint32_t method) {
        return {L"LAVVideo.SetRuntimeConfig(1)", L"> ConfigureLAVVideo: HWAccel=" + std::to_wstring(method)};
    }
    static Lines Probed(std::uint32_t method) {
        return {L"LAVVideo.CheckHWAccelSupport(" + std::to_wstring(method) + L")"};
    }
    static Lines Supported(std::uint32_t method, const std::wstring& status = L"2") {
        return {L"> HWAccel " + std::to_wstring(method) + L" supported (status=" + status + L")"};
    }
    static Lines Unsupported(std::uint32_t method) {
        return {L"> HWAccel " + std::to_wstring(method) + L" not supported, trying fallback"};
    }
    static Lines Given(std::uint32_t method, const std::wstring& name, const std::wstring& devices = L"0") {
        const std::wstring number = std::to_wstring(method);
        return {L"LAVVideo.SetHWAccel(" + number + L")", L"LAVVideo.GetHWAccelNumDevices(" + number + L")",
                L"> HWAccel=" + name + L", Available devices=" + devices};
    }
    static Lines Current(std::uint32_t method) {
        return {L"LAVVideo.GetHWAccelDeviceIndex(" + std::to_wstring(method) + L")",
                L"> Current HWAccel device index=7 (ID=0xBEEF)"};
    }
};

TEST_F(HardwareMethod, IsTheFirstOfItsChainThatIsSupported) {
    // What is asked about in turn; behind the last comes software.
    const std::vector<std::vector<std::uint32_t>> chains = {{}, {1, 5, 3}, {2}, {3}, {4}, {5, 3}};
    const Lines names = {L"None", L"CUDA", L"QuickSync", L"DXVA2", L"DXVA2Native", L"D3D11"};
    for (std::uint32_t asked = 0; asked < chains.size(); ++asked) {
        Ask(asked);
        for (std::uint32_t subset = 0; subset < 32; ++subset) {
            const auto isSupported = [subset](std::uint32_t method) {
                return (subset >> (method - 1) & 1) != 0;
            };
            std::wstring list;
            for (std::uint32_t method = 1; method <= 5; ++method) {
                list += isSupported(method) ? std::to_wstring(method) + L"," : L"";
            }
            SCOPED_TRACE(::testing::PrintToString(asked) + " of " + ::testing::PrintToString(list));
            SetText("LAVVideo.supported", list.c_str());
            Lines wanted = Asked(asked);
            std::uint32_t given = 0;
            for (const std::uint32_t method : chains[asked]) {
                wanted = Join({wanted, Probed(method)});
                if (method == asked) {
                    wanted = Join({wanted, isSupported(asked) ? Supported(asked) : Unsupported(asked)});
                }
                if (isSupported(method)) {
                    given = method;
                    break;
                }
            }
            ExpectLines(Join({wanted, Given(given, names[given]), Current(given)}), Choice());
            EXPECT_EQ(asked, engine->hwAccel) << "the engine keeps what was asked for";
        }
    }
}

TEST_F(HardwareMethod, AnUnknownOneIsAskedAboutToo) {
    Ask(9);
    SetText("LAVVideo.supported", L"9");
    ExpectLines(Join({Asked(9), Probed(9), Supported(9), Given(9, L"Unknown"), Current(9)}), Choice());
    SetText("LAVVideo.supported", L"1,2,3,4,5");
    ExpectLines(Join({Asked(9), Probed(9), Unsupported(9), Given(0, L"None"), Current(0)}), Choice());
    EXPECT_EQ(9U, engine->hwAccel);
}

TEST_F(HardwareMethod, AnyStatusButZeroMeansSupported) {
    Ask(3);
    SetNumber("LAVVideo.status", 1);
    ExpectLines(Join({Asked(3), Probed(3), Supported(3, L"1"), Given(3, L"DXVA2"), Current(3)}), Choice());
    SetNumber("LAVVideo.status", -1);
    ExpectLines(Join({Asked(3), Probed(3), Supported(3, L"-1"), Given(3, L"DXVA2"), Current(3)}), Choice());
    // Also of those that are fallen back on.
    Ask(1);
    SetText("LAVVideo.supported", L"5");
    ExpectLines(Join({Asked(1), Probed(1), Unsupported(1), Probed(5), Given(5, L"D3D11"), Current(5)}),
                Choice());
}

TEST_F(HardwareMethod, DevicesAreListedUpToFour) {
    const Lines devices = {L"LAVVideo.GetHWAccelDeviceInfo(5, 0)", L">   Device[0]: Adapter 0 (ID=0xA0)",
                           L"LAVVideo.GetHWAccelDeviceInfo(5, 1)", L">   Device[1]: Adapter 1 (ID=0xA1)",
                           L"LAVVideo.GetHWAccelDeviceInfo(5, 2)", L">   Device[2]: (null) (ID=0xA2)",
                           L"LAVVideo.GetHWAccelDeviceInfo(5, 3)", L">   Device[3]: Adapter 3 (ID=0xA3)"};
    struct Row {
        long count;
        const wchar_t* text;
        std::size_t listed;
    };
    for (const Row& row : {Row{0, L"0", 0}, Row{1, L"1", 1}, Row{3, L"3", 3}, Row{4, L"4", 4},
                           Row{5, L"5", 4}, Row{300, L"300", 4}, Row{-1, L"-1", 4}}) {
        SetNumber("LAVVideo.devices", row.count);
        const Lines listed(devices.begin(), devices.begin() + static_cast<std::ptrdiff_t>(2 * row.listed));
        ExpectLines(
            Join({Asked(5), Probed(5), Supported(5), Given(5, L"D3D11", row.text), listed, Current(5)}),
            Choice());
    }
}

TEST_F(HardwareMethod, ADeviceThatCanNotBeToldIsPassedOver) {
    SetNumber("LAVVideo.devices", 3);
    SetNumber("LAVVideo.device1", E_FAIL);
    ExpectLines(Join({Asked(5),
                      Probed(5),
                      Supported(5),
                      Given(5, L"D3D11", L"3"),
                      {L"LAVVideo.GetHWAccelDeviceInfo(5, 0)", L">   Device[0]: Adapter 0 (ID=0xA0)",
                       L"LAVVideo.GetHWAccelDeviceInfo(5, 1)", L"LAVVideo.GetHWAccelDeviceInfo(5, 2)",
                       L">   Device[2]: (null) (ID=0xA2)"},
                      Current(5)}),
                Choice());
}

TEST_F(HardwareMethod, IsReadFromTheStoreAtEachOpen) {
    Ask(3);
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({{L"> OpenFile with HWAccel=3"}, expected::FilmBuild(3, L"DXVA2")}), Calls());
    EXPECT_EQ(3U, engine->hwAccel);
    Ask(0);
    ClearCalls();
    ASSERT_TRUE(engine->OpenFile(kFilm));
    ExpectLines(Join({expected::Close(), {L"> OpenFile with HWAccel=0"}, expected::FilmBuild(0, L"None")}),
                Calls());
    EXPECT_EQ(0U, engine->hwAccel);
}

TEST_F(HardwareMethod, OfAnotherTypeCountsAsAbsent) {
    settings.values[L"LAV_HWAccel"] = std::wstring(L"0");
    ASSERT_TRUE(engine->OpenFile(kFilm));
    EXPECT_EQ(5U, engine->hwAccel);
}

} // namespace
} // namespace brindlecast::testing

#include "subtitles/renderer_subtitle_callback.h"

#include "base/trace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindlecast::testing {
namespace {

using CreateDevice = decltype(&D3D11CreateDevice);

class SubtitleCallback : public ::testing::Test {
protected:
    SubtitleCallback() {
        *callback.ReleaseAndGetAddressOf() = new CMPCVR11SubtitleCallback;
        SetTraceSink([this](std::wstring_view line) { lines.emplace_back(line); });
        const HMODULE library = LoadLibraryW(L"d3d11.dll");
        const auto create = reinterpret_cast<CreateDevice>(
            reinterpret_cast<void*>(GetProcAddress(library, "D3D11CreateDevice")));
        create(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION,
               device.GetAddressOf(), nullptr, nullptr);
    }
    ~SubtitleCallback() override { SetTraceSink({}); }

    static ULONG References(IUnknown* object) {
        object->AddRef();
        return object->Release();
    }

    ComPtr<CMPCVR11SubtitleCallback> callback;
    ComPtr<ID3D11Device> device;
    std::vector<std::wstring> lines;
};

TEST_F(SubtitleCallback, IsWhatTheRendererAsksFor) {
    ComPtr<ISubRender11Callback> asked;
    EXPECT_EQ(S_OK, callback->QueryInterface(__uuidof(ISubRender11Callback),
                                             reinterpret_cast<void**>(asked.GetAddressOf())));
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(S_OK,
              callback->QueryInterface(__uuidof(IUnknown), reinterpret_cast<void**>(unknown.GetAddressOf())));
    void* other = callback.Get();
    EXPECT_EQ(E_NOINTERFACE, callback->QueryInterface(__uuidof(ISubRender11), &other));
    EXPECT_EQ(nullptr, other);
    EXPECT_EQ(E_POINTER, callback->QueryInterface(__uuidof(IUnknown), nullptr));
}

TEST_F(SubtitleCallback, TakesADeviceAndGivesItBack) {
    ASSERT_NE(nullptr, device);
    const ULONG before = References(device.Get());
    EXPECT_EQ(S_OK, callback->SetDevice11(device.Get()));
    EXPECT_GT(References(device.Get()), before);
    ASSERT_EQ(1U, lines.size());
    EXPECT_TRUE(lines[0].starts_with(L"[Brindlecast] D3D11 Device set: 0x"));
    EXPECT_TRUE(lines[0].ends_with(L", resources created\n"));
    EXPECT_EQ(S_OK, callback->SetDevice11(nullptr));
    EXPECT_EQ(before, References(device.Get()));
    EXPECT_EQ(1U, lines.size());
}

TEST_F(SubtitleCallback, TakesTheSameDeviceAgain) {
    ASSERT_NE(nullptr, device);
    const ULONG before = References(device.Get());
    EXPECT_EQ(S_OK, callback->SetDevice11(device.Get()));
    const ULONG once = References(device.Get());
    EXPECT_EQ(S_OK, callback->SetDevice11(device.Get()));
    EXPECT_EQ(once, References(device.Get()));
    callback.Reset();
    EXPECT_EQ(before, References(device.Get())) << "the last release gives the device back";
}

TEST_F(SubtitleCallback, WithoutManagerNothingIsDrawn) {
    EXPECT_EQ(S_OK, callback->SetDevice11(device.Get()));
    const RECT rect{0, 0, 640, 360};
    EXPECT_EQ(S_FALSE, callback->Render11(0, 400'000, 400'000, rect, rect, rect, 1.0, 0, 0));
}

} // namespace
} // namespace brindlecast::testing

#pragma once

#include "base/win32/unique_handle.h"
#include "tests/graph/graph_fixture.h"
#include "tests/graph/picture_files.h"

#include <algorithm>

namespace brindlecast::testing {

// Values of the setting ScreenshotMethod.
inline constexpr std::uint32_t kCurrentImage = 0;
inline constexpr std::uint32_t kDisplayedImage = 1;
inline constexpr std::uint32_t kWindowImage = 2;

// A picture of 3 by 2 pixels whose every byte is another, so that rows and channels can't be mistaken.
inline const std::vector<std::uint32_t> kTopRow = {0x00FF0001, 0x0000FE02, 0x000003FD};
inline const std::vector<std::uint32_t> kBottomRow = {0x00102030, 0x00A0B0C0, 0x00FFFFFF};

// Pictures of the open film, and a file for them.
class CaptureTest : public GraphTest {
protected:
    void Open() {
        ASSERT_TRUE(engine->OpenFile(kFilm));
        ClearCalls();
    }
    void UseMethod(std::uint32_t method) { settings.values[L"ScreenshotMethod"] = method; }
    void UseFormat(std::uint32_t format) { settings.values[L"ScreenshotFormat"] = format; }

    // A name in the folder of temporary files, as screenshots have it.
    std::wstring ImagePath() {
        wchar_t folder[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, folder);
        path = std::wstring(folder) + L"화면 저장.png";
        DeleteFileW(path.c_str());
        return path;
    }
    std::vector<std::uint8_t> ReadBack() const {
        const UniqueFile file(
            CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        std::vector<std::uint8_t> bytes(file ? GetFileSize(file.Get(), nullptr) : 0);
        DWORD got = 0;
        if (file) {
            ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr);
        }
        bytes.resize(got);
        return bytes;
    }
    bool BeginsWith(std::vector<std::uint8_t> magic) const {
        const std::vector<std::uint8_t> bytes = ReadBack();
        return bytes.size() > magic.size() && std::equal(magic.begin(), magic.end(), bytes.begin());
    }
    // What the renderer gives, as a displayed or as a current image.
    void ShowDisplayed(const std::vector<std::uint8_t>& dib) {
        SetText("MpcVideoRenderer64.displayedDib", Hexadecimal(dib).c_str());
    }
    void ShowCurrent(const std::vector<std::uint8_t>& dib) {
        SetText("MpcVideoRenderer64.currentDib", Hexadecimal(dib).c_str());
    }
    void TearDown() override {
        if (!path.empty()) {
            DeleteFileW(path.c_str());
        }
        GraphTest::TearDown();
    }

    std::wstring path;
};

} // namespace brindlecast::testing

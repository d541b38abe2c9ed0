#include "tests/e2e/screen.h"

#include "base/win32/geometry.h"
#include "base/win32/unique_handle.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace brindlecast::testing {

namespace {

BITMAPINFO TopDownBitmap(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

} // namespace

BgraView Photograph::View() const {
    return {pixels.data(), width, height, static_cast<std::ptrdiff_t>(width) * 4};
}

Rgb Photograph::At(Point point) const {
    const std::size_t at = (static_cast<std::size_t>(point.y) * static_cast<std::size_t>(width) +
                            static_cast<std::size_t>(point.x)) *
                           4;
    return {pixels.at(at + 2), pixels.at(at + 1), pixels.at(at)};
}

double Photograph::BlackShare(const Rect& rect, int limit) const {
    int black = 0;
    for (int y = rect.top; y < rect.bottom; ++y) {
        for (int x = rect.left; x < rect.right; ++x) {
            const Rgb colour = At({x, y});
            black += std::max({colour.red, colour.green, colour.blue}) <= limit ? 1 : 0;
        }
    }
    const int total = rect.Width() * rect.Height();
    return total > 0 ? static_cast<double>(black) / total : 0.0;
}

void Photograph::Save(const std::wstring& path) const {
    const BITMAPINFO info = TopDownBitmap(width, height);
    BITMAPFILEHEADER header{};
    header.bfType = 0x4D42; // "BM"
    header.bfOffBits = sizeof(header) + sizeof(info.bmiHeader);
    header.bfSize = header.bfOffBits + static_cast<DWORD>(pixels.size());
    std::ofstream file(std::filesystem::path(path), std::ios::binary);
    file.write(reinterpret_cast<const char*>(&header), sizeof(header));
    file.write(reinterpret_cast<const char*>(&info.bmiHeader), sizeof(info.bmiHeader));
    file.write(reinterpret_cast<const char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
}

Photograph PhotographScreen(const Rect& screenRect) {
    Photograph photograph;
    photograph.width = screenRect.Width();
    photograph.height = screenRect.Height();
    const HDC screen = GetDC(nullptr);
    const UniqueMemoryDc memory(CreateCompatibleDC(screen));
    const BITMAPINFO info = TopDownBitmap(photograph.width, photograph.height);
    void* bits = nullptr;
    const UniqueBitmap bitmap(CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    {
        const SelectGuard select(memory.Get(), bitmap.Get());
        BitBlt(memory.Get(), 0, 0, photograph.width, photograph.height, screen, screenRect.left,
               screenRect.top, SRCCOPY);
        GdiFlush();
    }
    const auto* bytes = static_cast<const std::uint8_t*>(bits);
    photograph.pixels.assign(bytes,
                             bytes + static_cast<std::ptrdiff_t>(photograph.width) * photograph.height * 4);
    ReleaseDC(nullptr, screen);
    return photograph;
}

Rect ScreenRectOf(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
    return FromRect(client);
}

} // namespace brindlecast::testing

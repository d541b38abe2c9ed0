#include "app/settings.h"
#include "base/win32/unique_handle.h"
#include "engine/image_file.h"
#include "engine/player_engine.h"

#include <cstring>
#include <memory>
#include <new>

namespace brindlecast {

namespace {

// Values of the setting ScreenshotMethod; every other one asks for the current image.
constexpr std::uint32_t kMethodDisplayedImage = 1;
constexpr std::uint32_t kMethodWindow = 2;
// Values of the setting ScreenshotFormat; every other one is PNG.
constexpr std::uint32_t kFormatJpeg = 1;
constexpr std::uint32_t kFormatRaw = 2;

constexpr const char* kDisplayedImageField = "displayedImage";
constexpr WORD kWindowBitsPerPixel = 24;
#ifndef PW_RENDERFULLCONTENT
constexpr UINT PW_RENDERFULLCONTENT = 2;
#endif

struct TaskMemoryDeleter {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};

struct WindowDc {
    explicit WindowDc(HWND owner) : window(owner), context(GetDC(owner)) {}
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    ~WindowDc() {
        if (context != nullptr) {
            ReleaseDC(window, context);
        }
    }
    HWND window;
    HDC context;
};

// What the window draws when it is asked to draw itself into a bitmap. None when it can't.
UniqueBitmap PrintToBitmap(HWND window, SIZE size) {
    const WindowDc screen(window);
    const UniqueMemoryDc memory(screen.context != nullptr ? CreateCompatibleDC(screen.context) : nullptr);
    if (!memory) {
        return {};
    }
    UniqueBitmap bitmap(CreateCompatibleBitmap(screen.context, size.cx, size.cy));
    if (!bitmap) {
        return {};
    }
    const SelectGuard selected(memory.Get(), bitmap.Get());
    if (PrintWindow(window, memory.Get(), PW_RENDERFULLCONTENT) == FALSE) {
        return {};
    }
    return bitmap;
}

// The bitmap as a file of bottom-up rows of 24 bits a pixel; null when it can't be read.
BitmapBytes ReadBitmap(HBITMAP bitmap, SIZE size) {
    const std::size_t stride = (static_cast<std::size_t>(size.cx) + 1) * 3 & ~std::size_t{3};
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = size.cx;
    info.bmiHeader.biHeight = size.cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = kWindowBitsPerPixel;
    info.bmiHeader.biCompression = BI_RGB;
    const std::size_t bytes = sizeof(BITMAPINFOHEADER) + stride * static_cast<std::size_t>(size.cy);
    const std::unique_ptr<std::uint8_t[]> dib(new (std::nothrow) std::uint8_t[bytes]());
    const UniqueMemoryDc context(CreateCompatibleDC(nullptr));
    if (dib == nullptr || !context ||
        GetDIBits(context.Get(), bitmap, 0, static_cast<UINT>(size.cy), dib.get() + sizeof(BITMAPINFOHEADER),
                  &info, DIB_RGB_COLORS) != size.cy) {
        return nullptr;
    }
    std::memcpy(dib.get(), &info.bmiHeader, sizeof(BITMAPINFOHEADER));
    return BitmapFileFromDib({dib.get(), bytes});
}

} // namespace

BitmapBytes PlayerEngine::CaptureFrame() {
    switch (ReadSetting(settings, settings::kScreenshotMethod)) {
    case kMethodDisplayedImage: {
        BitmapBytes image = CaptureDisplayedImage();
        return image != nullptr && !image->empty() ? image : CaptureCurrentImage();
    }
    case kMethodWindow: return CaptureWindowImage();
    default: return CaptureCurrentImage();
    }
}

BitmapBytes PlayerEngine::CaptureDisplayedImage() {
    if (rendererConfig == nullptr) {
        return nullptr;
    }
    void* data = nullptr;
    unsigned size = 0;
    const HRESULT result = rendererConfig->Flt_GetBin(kDisplayedImageField, &data, &size);
    const std::unique_ptr<void, TaskMemoryDeleter> owned(SUCCEEDED(result) ? data : nullptr);
    return owned != nullptr && size != 0 ? NormalizeBitmap(owned.get(), size) : nullptr;
}

BitmapBytes PlayerEngine::CaptureWindowImage() {
    RECT client{};
    if (videoHost == nullptr || GetClientRect(videoHost, &client) == FALSE || client.right <= 0 ||
        client.bottom <= 0) {
        return nullptr;
    }
    const SIZE size = {client.right, client.bottom};
    const UniqueBitmap bitmap = PrintToBitmap(videoHost, size);
    return bitmap ? ReadBitmap(bitmap.Get(), size) : nullptr;
}

BitmapBytes PlayerEngine::CaptureCurrentImage() {
    LONG size = 0;
    if (basicVideo == nullptr || FAILED(basicVideo->GetCurrentImage(&size, nullptr)) || size <= 0) {
        return nullptr;
    }
    const auto bytes = static_cast<std::size_t>(size);
    // Whole numbers, because that is how the interface sees the memory. A renderer may ask for more than
    // there is.
    const std::unique_ptr<LONG[]> image(new (std::nothrow) LONG[bytes / sizeof(LONG) + 1]());
    if (image == nullptr || FAILED(basicVideo->GetCurrentImage(&size, image.get()))) {
        return nullptr;
    }
    return BitmapFileFromDib({reinterpret_cast<const std::uint8_t*>(image.get()), bytes});
}

bool PlayerEngine::SaveScreenshot(const std::wstring& path) {
    const BitmapBytes image = CaptureFrame();
    if (image == nullptr || image->empty()) {
        return false;
    }
    switch (ReadSetting(settings, settings::kScreenshotFormat)) {
    case kFormatJpeg: return EncodeImageFile(image, path, L"image/jpeg");
    case kFormatRaw: return WriteBytesToFile(*image, path);
    default: return EncodeImageFile(image, path, L"image/png");
    }
}

} // namespace brindlecast

#include "engine/image_file.h"

#include "base/win32/com_ptr.h"
#include "base/win32/gdiplus.h"
#include "base/win32/unique_handle.h"

#include <windows.h>

#include <objbase.h>

#include <cstring>
#include <optional>

namespace brindlecast {

namespace {

constexpr const wchar_t* kJpegType = L"image/jpeg";
constexpr ULONG kJpegQuality = 95;

// {1D5BE4B5-FA4A-452D-9CDD-5DB35105E7EB}
constexpr GUID kEncoderQuality = {
    0x1D5BE4B5, 0xFA4A, 0x452D, {0x9C, 0xDD, 0x5D, 0xB3, 0x51, 0x05, 0xE7, 0xEB}};

using UniqueGlobal = UniqueResource<HandleTraits<HGLOBAL, GlobalFree>>;

// A movable block that holds the bytes; none when there is no memory.
UniqueGlobal CopyToGlobal(const std::vector<std::uint8_t>& bytes) {
    UniqueGlobal block(GlobalAlloc(GMEM_MOVEABLE, bytes.size()));
    void* const target = block ? GlobalLock(block.Get()) : nullptr;
    if (target == nullptr) {
        return {};
    }
    std::memcpy(target, bytes.data(), bytes.size());
    GlobalUnlock(block.Get());
    return block;
}

std::optional<CLSID> FindEncoder(const std::wstring& mimeType) {
    UINT count = 0;
    UINT size = 0;
    if (Gdiplus::GetImageEncodersSize(&count, &size) != Gdiplus::Ok || size == 0) {
        return std::nullopt;
    }
    // The texts that the records point to lie behind them in the same block.
    std::vector<Gdiplus::ImageCodecInfo> encoders(size / sizeof(Gdiplus::ImageCodecInfo) + 1);
    if (Gdiplus::GetImageEncoders(count, size, encoders.data()) != Gdiplus::Ok) {
        return std::nullopt;
    }
    for (UINT i = 0; i < count; ++i) {
        if (encoders[i].MimeType != nullptr && mimeType == encoders[i].MimeType) {
            return encoders[i].Clsid;
        }
    }
    return std::nullopt;
}

bool Save(Gdiplus::Bitmap& bitmap, const std::wstring& path, const std::wstring& mimeType) {
    const std::optional<CLSID> encoder = FindEncoder(mimeType);
    if (!encoder) {
        return false;
    }
    ULONG quality = kJpegQuality;
    Gdiplus::EncoderParameters parameters;
    parameters.Count = 1;
    parameters.Parameter[0] = {kEncoderQuality, 1, Gdiplus::EncoderParameterValueTypeLong, &quality};
    const bool isJpeg = mimeType == kJpegType;
    return bitmap.Save(path.c_str(), &*encoder, isJpeg ? &parameters : nullptr) == Gdiplus::Ok;
}

} // namespace

bool EncodeImageFile(const BitmapBytes& bytes, const std::wstring& path, const std::wstring& mimeType) {
    if (bytes == nullptr || bytes->empty()) {
        return false;
    }
    // Given back in reverse order: picture, stream, memory, GDI+.
    const GdiplusSession session;
    const UniqueGlobal block = session ? CopyToGlobal(*bytes) : UniqueGlobal();
    ComPtr<IStream> stream;
    if (!block || FAILED(CreateStreamOnHGlobal(block.Get(), FALSE, stream.GetAddressOf()))) {
        return false;
    }
    const std::unique_ptr<Gdiplus::Bitmap> bitmap(Gdiplus::Bitmap::FromStream(stream.Get()));
    return bitmap != nullptr && bitmap->GetLastStatus() == Gdiplus::Ok && Save(*bitmap, path, mimeType);
}

bool WriteBytesToFile(const std::vector<std::uint8_t>& bytes, const std::wstring& path) {
    const UniqueFile file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return file &&
           WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) !=
               FALSE &&
           written == bytes.size();
}

} // namespace brindlecast

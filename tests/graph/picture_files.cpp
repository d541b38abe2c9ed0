#include "tests/graph/picture_files.h"

#include "base/text.h"
#include "base/win32/com_ptr.h"

#include <windows.h>

#include <wincodec.h>

namespace brindlecast::testing {

namespace {

void Append16(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

void Append32(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
    Append16(bytes, value);
    Append16(bytes, value >> 16);
}

std::vector<std::uint8_t> InfoHeader(int width, int height, std::uint32_t bitsPerPixel) {
    std::vector<std::uint8_t> bytes;
    Append32(bytes, 40);
    Append32(bytes, static_cast<std::uint32_t>(width));
    Append32(bytes, static_cast<std::uint32_t>(height));
    Append16(bytes, 1);
    Append16(bytes, bitsPerPixel);
    bytes.resize(40);
    return bytes;
}

} // namespace

std::vector<std::uint8_t> DeepDib(int width, int height,
                                  const std::vector<std::vector<std::uint32_t>>& rows) {
    std::vector<std::uint8_t> dib = InfoHeader(width, height, 32);
    for (const auto& row : rows) {
        for (const std::uint32_t color : row) {
            Append32(dib, color);
        }
    }
    return dib;
}

std::uint32_t EightBitColor(int index) {
    const auto value = static_cast<std::uint32_t>(index);
    return value << 16 | (255 - value) << 8 | (value ^ 0x55);
}

std::vector<std::uint8_t> EightBitDib(int width, int height, const std::vector<std::uint8_t>& indices) {
    std::vector<std::uint8_t> dib = InfoHeader(width, height, 8);
    for (int index = 0; index < 256; ++index) {
        Append32(dib, EightBitColor(index));
    }
    dib.insert(dib.end(), indices.begin(), indices.end());
    return dib;
}

std::wstring Hexadecimal(const std::vector<std::uint8_t>& bytes) {
    std::wstring digits;
    for (const std::uint8_t byte : bytes) {
        digits += FormatText(L"%02X", static_cast<unsigned>(byte));
    }
    return digits;
}

std::uint32_t Number32(const std::vector<std::uint8_t>& bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;) {
        value = value << 8 | bytes.at(offset + i);
    }
    return value;
}

std::vector<std::uint32_t> Join(const std::vector<std::vector<std::uint32_t>>& rows) {
    std::vector<std::uint32_t> joined;
    for (const auto& row : rows) {
        joined.insert(joined.end(), row.begin(), row.end());
    }
    return joined;
}

std::vector<std::uint32_t> Opaque(std::vector<std::uint32_t> colors) {
    for (std::uint32_t& color : colors) {
        color |= 0xFF000000;
    }
    return colors;
}

Picture DecodePicture(const std::wstring& path) {
    ComPtr<IWICImagingFactory> factory;
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    ComPtr<IWICFormatConverter> converter;
    Picture picture;
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                IID_PPV_ARGS(&factory))) ||
        FAILED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                  WICDecodeMetadataCacheOnDemand, decoder.GetAddressOf())) ||
        FAILED(decoder->GetFrame(0, frame.GetAddressOf())) ||
        FAILED(factory->CreateFormatConverter(converter.GetAddressOf())) ||
        FAILED(converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                     nullptr, 0.0, WICBitmapPaletteTypeCustom)) ||
        FAILED(converter->GetSize(&picture.width, &picture.height))) {
        return {};
    }
    picture.pixels.resize(std::size_t{picture.width} * picture.height);
    if (FAILED(converter->CopyPixels(nullptr, picture.width * 4, static_cast<UINT>(picture.pixels.size() * 4),
                                     reinterpret_cast<BYTE*>(picture.pixels.data())))) {
        return {};
    }
    return picture;
}

} // namespace brindlecast::testing

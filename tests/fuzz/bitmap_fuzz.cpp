#include "engine/bitmap_file.h"

#include <cstdlib>
#include <cstring>

using namespace brindlecast;

// Reads the input as a renderer's picture.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const BitmapBytes file = NormalizeBitmap(data, size);
    if ((file == nullptr) != (size < kBitmapInfoHeaderBytes) && size >= kBitmapInfoHeaderBytes + 1024) {
        std::abort(); // a header with room for any palette is always a picture
    }
    if (file == nullptr) {
        return 0;
    }
    if (std::memcmp(file->data(), "BM", 2) != 0) {
        std::abort();
    }
    // A file is taken as it is, so once normalised nothing changes any more.
    const BitmapBytes again = NormalizeBitmap(file->data(), file->size());
    if (again == nullptr || *again != *file) {
        std::abort();
    }
    static_cast<void>(BitmapFileFromDib({data, size}));
    return 0;
}

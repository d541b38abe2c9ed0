#pragma once

#include "tests/e2e/screen.h"

#include <optional>
#include <string>

namespace brindlecast::testing {

// A picture file of any kind that GDI+ reads, decoded.
struct PictureFile {
    Photograph picture;
    bool isPng = false; // by its content, whatever its name
};

// Nothing when there is no such file or it holds no picture.
[[nodiscard]] std::optional<PictureFile> ReadPictureFile(const std::wstring& path);

} // namespace brindlecast::testing

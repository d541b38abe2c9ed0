#include "base/text.h"
#include "base/utf8.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace brindlecast;

// Reads the input as UTF-8 and as a format with arguments of every kind.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::wstring text = Utf8ToWide(bytes.c_str());
    if (Utf8ToWide(WideToUtf8(text).c_str()) != text) {
        std::abort(); // what was once read must survive the way back
    }
    static_cast<void>(FormatText(text, -7, 1.5, L"글자", 42U, std::size_t{9}, -0.0));
    return 0;
}

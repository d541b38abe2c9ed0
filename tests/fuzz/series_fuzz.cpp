#include "base/utf8.h"
#include "inspection/series_finder.h"
#include "inspection/series_pattern.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

using namespace brindlecast;

namespace {

// Names its entries in order; the first of them is the file asked for.
class Names final : public FolderEnumerator {
public:
    [[nodiscard]] bool
    Enumerate(const std::wstring&,
              const std::function<bool(std::wstring_view name, bool isFolder)>& entry) const override {
        for (const std::wstring& name : names) {
            if (!entry(name, false)) {
                break;
            }
        }
        return true;
    }
    std::vector<std::wstring> names;
};

} // namespace

// Reads the input as names, a line each.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = Utf8ToWide(std::string(reinterpret_cast<const char*>(data), size).c_str());
    Names folder;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(L'\n', at), text.size());
        folder.names.push_back(text.substr(at, end - at) + L".mkv");
        at = end + 1;
    }
    if (folder.names.empty()) {
        return 0;
    }
    const std::wstring& first = folder.names.front();
    const std::wstring stem = first.substr(0, first.size() - 4);
    const auto pattern = FindSeriesPattern(stem);
    if (pattern && !PlaceInSeries(*pattern, stem)) {
        std::abort(); // a file always belongs to its own series
    }
    const bool oneName = first.find_first_of(L"\\/") == std::wstring::npos;
    const std::vector<std::wstring> found = FindSeriesFiles(folder, L"d\\" + first, 100);
    if (found.size() > 100 || (oneName && found.empty())) {
        std::abort();
    }
    return 0;
}

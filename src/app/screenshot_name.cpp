#include "app/screenshot_name.h"

#include "base/paths.h"
#include "base/text.h"

namespace brindlecast {

std::wstring ScreenshotName(std::wstring_view filePath, const LocalTime& time) {
    std::wstring_view name = L"Screenshot";
    if (LastSeparator(filePath) != std::wstring_view::npos) {
        name = FileNameOf(filePath);
        name = name.substr(0, name.rfind(L'.'));
    }
    return FormatText(L"%s_%04d%02d%02d_%02d%02d%02d.png", name, time.year, time.month, time.day, time.hour,
                      time.minute, time.second);
}

} // namespace brindlecast

#include "base/display_scale.h"

namespace brindlecast {

namespace {
int systemDpi = 96;
float displayScale = 1.0F;
} // namespace

int SystemDpi() {
    return systemDpi;
}

float DisplayScale() {
    return displayScale;
}

void SetSystemDpi(int dpi) {
    systemDpi = dpi;
    displayScale = static_cast<float>(dpi) / 96.0F;
}

int Scaled(int unscaledPixels) {
    return static_cast<int>(displayScale * static_cast<float>(unscaledPixels));
}

} // namespace brindlecast

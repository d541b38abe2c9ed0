#pragma once

#include "base/time_types.h"
#include "ui/window.h"

#include <cstdint>
#include <string>

namespace brindlecast {

// What the bar below the picture shows of the player.
struct ToolbarState {
    bool playing = false;
    bool fileOpen = false;
    bool subtitleOn = true;
    bool muted = false;
    std::int32_t volumePercent = 100; // 0 to 100
    double rateShown = 1.0;
    Seconds position = 0.0;
    Seconds duration = 0.0;
    // Parts of the duration, 0.0 to 1.0; marks that are not set are at 0.0.
    double fraction = 0.0;
    double markFractionA = 0.0;
    double markFractionB = 0.0;
    std::wstring videoCodecText;
    std::wstring audioCodecText;
    bool isHardware = false;
    std::int32_t channels = 0;
};

// The bar below the picture. It shows what the main window writes into `state` and asks nobody itself.
class Toolbar final : public Window {
public:
    void SetVolumePercent(int percent);
    // Has the bar painted anew after a change of `state`.
    void Refresh() const;

    ToolbarState state;
    // The user holds the seek bar: its fraction is the user's.
    bool isSeekDragging = false;
    bool fullScreen = false;

protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
};

} // namespace brindlecast

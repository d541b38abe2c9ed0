#pragma once

#include <cstdint>

namespace brindlecast {

// The course of one message in milliseconds. `startTick` is a reading of the system's tick counter, which
// starts over after 49.7 days; differences are taken modulo 2^32, so that this does not show.
struct FadeTimes {
    std::uint32_t startTick = 0;
    std::uint32_t holdMs = 0; // at full opacity
    std::uint32_t fadeMs = 0; // down to nothing
};

enum class FadeAction {
    Keep, // the picture on the screen stays
    Draw, // the message is drawn anew with the opacity given
    End,  // the message is over
};

struct FadeStep {
    FadeAction action = FadeAction::Keep;
    float opacity = 0.0F; // from now on, 0 to 1
};

// What a reading `now` of the tick counter asks for while a message is on show with `opacity`. A change of
// 0.01 or less is not worth a drawing.
[[nodiscard]] FadeStep AdvanceFade(const FadeTimes& times, std::uint32_t now, float opacity);

} // namespace brindlecast

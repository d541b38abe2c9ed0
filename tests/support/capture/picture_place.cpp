#include "tests/support/capture/picture_place.h"

#include <algorithm>

namespace brindlecast::testing {
namespace {

// Mean over the witnesses of the distance from the nearest frame.
double Distance(std::span<const Witness> witnesses, const PixelRect& rect) {
    double sum = 0;
    for (const Witness& witness : witnesses) {
        const Thumbnail& model = witness.frames.front();
        const Thumbnail picture = Sample(witness.window, rect, model.width, model.height);
        double nearest = std::numeric_limits<double>::max();
        for (const Thumbnail& frame : witness.frames) {
            nearest = std::min(nearest, MeanSquare(picture, frame));
        }
        sum += Capped(nearest);
    }
    return sum / static_cast<double>(witnesses.size());
}

} // namespace

double Capped(double meanSquare) {
    constexpr double kWrong = 2000.0;
    return std::min(meanSquare, kWrong);
}

std::vector<Place> BestPlaces(std::span<const Witness> witnesses, int shapeWidth, int shapeHeight,
                              const PlaceRange& range) {
    const BgraView& window = witnesses.front().window;
    const Thumbnail& model = witnesses.front().frames.front();
    std::vector<Place> places;
    for (int top = range.topFrom; top <= range.topTo; top += range.topStep) {
        Place best;
        for (int frame = range.frameFrom; frame <= range.frameTo; frame += range.frameStep) {
            for (int bottom = range.bottomFrom; bottom <= range.bottomTo; bottom += range.bottomStep) {
                const PixelRect host{frame, frame + top, window.width - 2 * frame,
                                     window.height - 2 * frame - top - bottom};
                const PixelRect rect = FitPicture(host, shapeWidth, shapeHeight);
                if (rect.width < model.width || rect.height < model.height) {
                    continue;
                }
                const double meanSquare = Distance(witnesses, rect);
                if (meanSquare < best.meanSquare) {
                    best = {rect, frame, top, bottom, meanSquare};
                }
            }
        }
        if (best.rect.width > 0) {
            places.push_back(best);
        }
    }
    std::sort(places.begin(), places.end(),
              [](const Place& one, const Place& other) { return one.meanSquare < other.meanSquare; });
    return places;
}

} // namespace brindlecast::testing

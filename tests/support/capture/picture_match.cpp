#include "tests/support/capture/picture_match.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace brindlecast::testing {
namespace {

// A picture scaled by other filters than ours and shown through another conversion has 28 dB and more; a
// neighbour scene, a black or a torn picture 10 to 18.
constexpr double kLeastDecibels = 20.0;
// Of the pictures that are compared.
constexpr double kLeastShare = 0.9;
// Seconds at the film's beginning and end that are not compared: the window may appear before its picture,
// and what is shown after the last frame is the player's affair.
constexpr double kLeftOutAtBegin = 0.5;
constexpr double kLeftOutAtEnd = 0.2;
// Mean squares: below, pictures count as plain, or two pictures as the same.
constexpr double kPlain = 16.0;
constexpr double kSame = 2.0;
constexpr std::size_t kFewestPictures = 4;
// Seconds that a picture may be off its place: a busy machine makes every player hesitate.
constexpr double kLongestHesitation = 0.4;
// Seconds by which two delays must differ to count as two.
constexpr double kNear = 0.25;

double Decibels(double meanSquare) {
    return 10 * std::log10(255.0 * 255.0 / std::max(meanSquare, 1e-3));
}

double Variance(const Thumbnail& picture) {
    double result = 0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        double sum = 0;
        double squares = 0;
        for (std::size_t i = channel; i < picture.values.size(); i += 3) {
            sum += picture.values[i];
            squares += static_cast<double>(picture.values[i]) * picture.values[i];
        }
        const double count = static_cast<double>(picture.values.size()) / 3;
        result = std::max(result, squares / count - (sum / count) * (sum / count));
    }
    return result;
}

const Thumbnail& FrameAt(const ReferenceFilm& film, double seconds) {
    const double index = std::floor(seconds * film.framesPerSecond + 1e-6);
    return film.frames[static_cast<std::size_t>(
        std::clamp(index, 0.0, static_cast<double>(film.frames.size() - 1)))];
}

double Length(const ReferenceFilm& film) {
    return static_cast<double>(film.frames.size()) / film.framesPerSecond;
}

// Like Shrink, from nine points of each part only: for quick comparisons of places.
Thumbnail Sample(const BgraView& image, const PixelRect& rect, int width, int height) {
    constexpr int kPoints = 3;
    Thumbnail result{width, height, {}};
    result.values.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::array<float, 3> sum{};
            for (int point = 0; point < kPoints * kPoints; ++point) {
                const int partX = 2 * (x * kPoints + point % kPoints) + 1;
                const int partY = 2 * (y * kPoints + point / kPoints) + 1;
                const int sourceX = rect.left + partX * rect.width / (2 * kPoints * width);
                const int sourceY = rect.top + partY * rect.height / (2 * kPoints * height);
                const std::uint8_t* pixel =
                    image.data + image.stride * sourceY + static_cast<std::ptrdiff_t>(sourceX) * 4;
                sum[0] += pixel[0];
                sum[1] += pixel[1];
                sum[2] += pixel[2];
            }
            for (const float channel : sum) {
                result.values.push_back(channel / (kPoints * kPoints));
            }
        }
    }
    return result;
}

const Grab& Liveliest(std::span<const Grab> grabs) {
    std::vector<double> variances;
    for (const Grab& grab : grabs) {
        variances.push_back(
            Variance(Sample(grab.window, {0, 0, grab.window.width, grab.window.height}, 32, 18)));
    }
    const auto most = std::max_element(variances.begin(), variances.end());
    return grabs[static_cast<std::size_t>(most - variances.begin())];
}

// Heights of the bars above and below and width of the frame around, from, to and in steps of, in pixels.
struct PlaceRange {
    int frameFrom, frameTo, frameStep;
    int topFrom, topTo, topStep;
    int bottomFrom, bottomTo, bottomStep;
};

struct Place {
    PixelRect rect;
    int frame = 0;
    int top = 0;
    int bottom = 0;
    double meanSquare = std::numeric_limits<double>::max(); // against the nearest frame
};

// For every height of the upper bar the place whose content is nearest to any of the frames; the best ones
// first.
std::vector<Place> BestPlaces(const BgraView& window, const ReferenceFilm& film,
                              std::span<const Thumbnail> frames, const PlaceRange& range) {
    const Thumbnail& model = film.frames.front();
    std::vector<Place> places;
    for (int top = range.topFrom; top <= range.topTo; top += range.topStep) {
        Place best;
        for (int frame = range.frameFrom; frame <= range.frameTo; frame += range.frameStep) {
            for (int bottom = range.bottomFrom; bottom <= range.bottomTo; bottom += range.bottomStep) {
                const PixelRect host{frame, frame + top, window.width - 2 * frame,
                                     window.height - 2 * frame - top - bottom};
                const PixelRect rect = FitPicture(host, film.displayWidth, film.displayHeight);
                if (rect.width < model.width || rect.height < model.height) {
                    continue;
                }
                const Thumbnail picture = Sample(window, rect, model.width, model.height);
                for (const Thumbnail& candidate : frames) {
                    const double meanSquare = MeanSquare(picture, candidate);
                    if (meanSquare < best.meanSquare) {
                        best = {rect, frame, top, bottom, meanSquare};
                    }
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

struct Alignment {
    double delay = 0;
    double meanSquare = std::numeric_limits<double>::max();
    std::size_t compared = 0;
    bool sure = false;
};

bool Covers(const ReferenceFilm& film, double seconds) {
    return seconds >= kLeftOutAtBegin && seconds < Length(film) - kLeftOutAtEnd;
}

// What one wrong picture may weigh at most when the delay is sought.
double Capped(double meanSquare) {
    constexpr double kWrong = 2000.0;
    return std::min(meanSquare, kWrong);
}

// The one delay under which the pictures agree best with the film. Pictures from before its beginning or
// after its end do not count, but most must be within.
Alignment Align(std::span<const Grab> grabs, std::span<const Thumbnail> pictures, const ReferenceFilm& film) {
    constexpr double kStep = 0.04;
    Alignment best;
    if (pictures.empty()) {
        return best;
    }
    std::vector<std::pair<double, double>> tried; // delay and mean square
    for (double delay = 0; delay <= kLongestDelay; delay += kStep) {
        double sum = 0;
        std::size_t compared = 0;
        for (std::size_t i = 0; i < grabs.size(); ++i) {
            const double position = grabs[i].time - delay;
            if (Covers(film, position)) {
                sum += Capped(MeanSquare(pictures[i], FrameAt(film, position)));
                ++compared;
            }
        }
        if (compared < kFewestPictures || compared * 2 < grabs.size()) {
            continue;
        }
        const double meanSquare = sum / static_cast<double>(compared);
        tried.emplace_back(delay, meanSquare);
        if (meanSquare < best.meanSquare) {
            best = {delay, meanSquare, compared, false};
        }
    }
    best.sure = std::none_of(tried.begin(), tried.end(), [&best](const auto& other) {
        return std::abs(other.first - best.delay) > kNear && other.second < 1.5 * best.meanSquare;
    });
    return best;
}

// Mean square of the change from one compared picture to the next, on the screen and in the film.
struct Motion {
    double screen = 0;
    double film = 0;
    double plainest = 0;   // variance of the liveliest compared frame of the film
    double meanSquare = 0; // of the pictures against their frames
    double hesitation = 0; // seconds that a good picture was off its place at most
    double good = 0;       // share of the pictures that resemble their frame
};

struct Nearest {
    double meanSquare;
    double offset; // seconds from its place, later ones positive
};

// How well the picture agrees with the film around the place where it ought to be; the place itself is
// preferred.
Nearest NearestFrame(const Thumbnail& picture, const ReferenceFilm& film, double position) {
    Nearest best{MeanSquare(picture, FrameAt(film, position)), 0};
    const double frame = 1 / film.framesPerSecond;
    for (double distance = frame; distance <= kLongestHesitation; distance += frame) {
        for (const double offset : {-distance, distance}) {
            const double meanSquare = MeanSquare(picture, FrameAt(film, position + offset));
            if (meanSquare < 0.9 * best.meanSquare) {
                best = {meanSquare, offset};
            }
        }
    }
    return best;
}

Motion MeasureMotion(std::span<const Grab> grabs, std::span<const Thumbnail> pictures,
                     const ReferenceFilm& film, double delay) {
    Motion motion;
    std::optional<std::size_t> previous;
    double steps = 0;
    double compared = 0;
    for (std::size_t i = 0; i < grabs.size(); ++i) {
        const double position = grabs[i].time - delay;
        if (!Covers(film, position)) {
            continue;
        }
        const Thumbnail& frame = FrameAt(film, position);
        motion.plainest = std::max(motion.plainest, Variance(frame));
        const Nearest nearest = NearestFrame(pictures[i], film, position);
        motion.meanSquare += nearest.meanSquare;
        if (Decibels(nearest.meanSquare) >= kLeastDecibels) {
            ++motion.good;
            motion.hesitation = std::max(motion.hesitation, std::abs(nearest.offset));
        }
        ++compared;
        if (previous) {
            motion.screen += MeanSquare(pictures[*previous], pictures[i]);
            motion.film += MeanSquare(FrameAt(film, grabs[*previous].time - delay), frame);
            ++steps;
        }
        previous = i;
    }
    motion.good /= std::max(1.0, compared);
    motion.meanSquare /= std::max(1.0, compared);
    motion.screen /= std::max(1.0, steps);
    motion.film /= std::max(1.0, steps);
    return motion;
}

// First guesses at the place, when the delay is not known yet; the likeliest first.
std::vector<Place> GuessPlaces(std::span<const Grab> grabs, const ReferenceFilm& film) {
    constexpr std::size_t kGuesses = 5;
    constexpr PlaceRange kAnywhere{0, 8, 4, 0, 64, 8, 0, 128, 8};
    const Grab& liveliest = Liveliest(grabs);
    std::vector<Thumbnail> frames;
    const double last = std::min(liveliest.time, Length(film));
    for (double at = std::max(0.0, last - kLongestDelay); at <= last; at += 0.2) {
        frames.push_back(FrameAt(film, at));
    }
    std::vector<Place> places = BestPlaces(liveliest.window, film, frames, kAnywhere);
    places.resize(std::min(places.size(), kGuesses));
    return places;
}

// The place to the pixel, when the frame that the liveliest picture shows is known.
Place RefinePlace(std::span<const Grab> grabs, const ReferenceFilm& film, const Place& guess, double delay) {
    constexpr int kReach = 6;
    const Grab& liveliest = Liveliest(grabs);
    const Thumbnail& model = film.frames.front();
    const double expected = liveliest.time - delay;
    const Thumbnail guessed = Sample(liveliest.window, guess.rect, model.width, model.height);
    const double shown = expected + NearestFrame(guessed, film, expected).offset;
    std::vector<Thumbnail> frames;
    for (const int step : {-1, 0, 1}) {
        frames.push_back(FrameAt(film, shown + step / film.framesPerSecond));
    }
    const auto from = [](int value) {
        return std::max(0, value - kReach);
    };
    const PlaceRange near{from(guess.frame),  guess.frame + kReach,  1,
                          from(guess.top),    guess.top + kReach,    1,
                          from(guess.bottom), guess.bottom + kReach, 1};
    const std::vector<Place> places = BestPlaces(liveliest.window, film, frames, near);
    return places.empty() ? guess : places.front();
}

// The place cut out of every picture; nothing where one does not hold it.
std::vector<Thumbnail> Cut(std::span<const Grab> grabs, const PixelRect& place, const ReferenceFilm& film) {
    const Thumbnail& model = film.frames.front();
    std::vector<Thumbnail> pictures;
    for (const Grab& grab : grabs) {
        if (place.left + place.width > grab.window.width || place.top + place.height > grab.window.height ||
            place.width < model.width || place.height < model.height) {
            return {};
        }
        pictures.push_back(Shrink(grab.window, place, model.width, model.height));
    }
    return pictures;
}

// Place and delay that explain the pictures best.
std::pair<Place, Alignment> Locate(std::span<const Grab> grabs, const ReferenceFilm& film) {
    std::pair<Place, Alignment> best;
    for (const Place& guess : GuessPlaces(grabs, film)) {
        const Alignment alignment = Align(grabs, Cut(grabs, guess.rect, film), film);
        if (best.first.rect.width == 0 || alignment.meanSquare < best.second.meanSquare) {
            best = {guess, alignment};
        }
    }
    if (best.second.compared > 0) {
        const Place refined = RefinePlace(grabs, film, best.first, best.second.delay);
        best = {refined, Align(grabs, Cut(grabs, refined.rect, film), film)};
    }
    return best;
}

} // namespace

Thumbnail Shrink(const BgraView& image, const PixelRect& rect, int width, int height) {
    Thumbnail result{width, height, {}};
    result.values.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    for (int y = 0; y < height; ++y) {
        const int top = rect.top + y * rect.height / height;
        const int bottom = std::max(top + 1, rect.top + (y + 1) * rect.height / height);
        for (int x = 0; x < width; ++x) {
            const int left = rect.left + x * rect.width / width;
            const int right = std::max(left + 1, rect.left + (x + 1) * rect.width / width);
            std::array<float, 3> sum{};
            for (int sourceY = top; sourceY < bottom; ++sourceY) {
                const std::uint8_t* pixel =
                    image.data + image.stride * sourceY + static_cast<std::ptrdiff_t>(left) * 4;
                for (int sourceX = left; sourceX < right; ++sourceX, pixel += 4) {
                    sum[0] += pixel[0];
                    sum[1] += pixel[1];
                    sum[2] += pixel[2];
                }
            }
            const auto count = static_cast<float>((right - left) * (bottom - top));
            for (const float channel : sum) {
                result.values.push_back(channel / count);
            }
        }
    }
    return result;
}

double MeanSquare(const Thumbnail& one, const Thumbnail& other) {
    double sum = 0;
    for (std::size_t i = 0; i < one.values.size(); ++i) {
        const double difference = static_cast<double>(one.values[i]) - other.values[i];
        sum += difference * difference;
    }
    return sum / static_cast<double>(std::max<std::size_t>(1, one.values.size()));
}

PictureVerdict JudgePicture(std::span<const Grab> grabs, const ReferenceFilm& film) {
    PictureVerdict verdict;
    const auto refuse = [&verdict](std::string complaint) {
        verdict.complaint = std::move(complaint);
        return verdict;
    };
    if (grabs.size() < kFewestPictures || film.frames.empty()) {
        return refuse("too few pictures to judge");
    }
    const auto [place, alignment] = Locate(grabs, film);
    const std::vector<Thumbnail> pictures = Cut(grabs, place.rect, film);
    if (pictures.empty()) {
        return refuse("the window changed its size or is too small");
    }
    if (alignment.compared == 0) {
        return refuse("too few pictures fall into the film");
    }
    verdict.place = place.rect;
    double liveliest = 0;
    for (const Thumbnail& picture : pictures) {
        liveliest = std::max(liveliest, Variance(picture));
    }
    verdict.delay = alignment.delay;
    verdict.delayIsSure = alignment.sure;
    verdict.compared = static_cast<int>(alignment.compared);
    const Motion motion = MeasureMotion(grabs, pictures, film, alignment.delay);
    verdict.decibels = Decibels(motion.meanSquare);
    verdict.hesitation = motion.hesitation;
    verdict.still = motion.film < kSame;
    if (motion.plainest < kPlain) {
        return refuse("the film itself is plain in this part, so nothing can be told");
    }
    if (liveliest < kPlain) {
        return refuse("the window is black or plain");
    }
    if (!verdict.still && motion.screen < motion.film / 4) {
        return refuse("the picture stands still while the film moves");
    }
    if (motion.good < kLeastShare) {
        return refuse("the pictures are not those of the film at its own pace, but for " +
                      std::to_string(std::lround(motion.good * 100)) + " %");
    }
    verdict.seen = true;
    return verdict;
}

} // namespace brindlecast::testing

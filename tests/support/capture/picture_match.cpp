#include "tests/support/capture/picture_match.h"

#include "tests/support/capture/picture_place.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
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

const Thumbnail& FrameAt(const ReferenceFilm& film, double seconds) {
    const double index = std::floor(seconds * film.framesPerSecond + 1e-6);
    return film.frames[static_cast<std::size_t>(
        std::clamp(index, 0.0, static_cast<double>(film.frames.size() - 1)))];
}

double Length(const ReferenceFilm& film) {
    return static_cast<double>(film.frames.size()) / film.framesPerSecond;
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

// Pictures from all over the run. The first ones may be of a window that is not ready.
std::array<const Grab*, 3> Chosen(std::span<const Grab> grabs) {
    return {&grabs[grabs.size() / 3], &grabs[grabs.size() / 2], &grabs[grabs.size() * 3 / 4]};
}

bool AreOfOneSize(std::span<const Grab> grabs) {
    return std::all_of(grabs.begin(), grabs.end(), [&grabs](const Grab& grab) {
        return grab.window.width == grabs.front().window.width &&
               grab.window.height == grabs.front().window.height;
    });
}

// First guesses at the place, when the delay is not known yet; the likeliest first.
std::vector<Place> GuessPlaces(std::span<const Grab> grabs, const ReferenceFilm& film) {
    constexpr std::size_t kGuesses = 5;
    constexpr PlaceRange kAnywhere{0, 8, 4, 0, 64, 8, 0, 128, 8};
    std::vector<Witness> witnesses;
    for (const Grab* grab : Chosen(grabs)) {
        Witness witness{grab->window, {}};
        const double last = std::min(grab->time, Length(film));
        for (double at = std::max(0.0, last - kLongestDelay); at <= last; at += 0.2) {
            witness.frames.push_back(FrameAt(film, at));
        }
        witnesses.push_back(std::move(witness));
    }
    std::vector<Place> places = BestPlaces(witnesses, film.displayWidth, film.displayHeight, kAnywhere);
    places.resize(std::min(places.size(), kGuesses));
    return places;
}

// The place to the pixel, when it is known about which frames the pictures show.
Place RefinePlace(std::span<const Grab> grabs, const ReferenceFilm& film, const Place& guess, double delay) {
    constexpr int kReach = 6;
    const Thumbnail& model = film.frames.front();
    std::vector<Witness> witnesses;
    for (const Grab* grab : Chosen(grabs)) {
        Witness witness{grab->window, {}};
        const double expected = grab->time - delay;
        const Thumbnail guessed = Sample(grab->window, guess.rect, model.width, model.height);
        const double shown = expected + NearestFrame(guessed, film, expected).offset;
        for (const int step : {-1, 0, 1}) {
            witness.frames.push_back(FrameAt(film, shown + step / film.framesPerSecond));
        }
        witnesses.push_back(std::move(witness));
    }
    const auto from = [](int value) {
        return std::max(0, value - kReach);
    };
    const PlaceRange near{from(guess.frame),  guess.frame + kReach,  2,
                          from(guess.top),    guess.top + kReach,    1,
                          from(guess.bottom), guess.bottom + kReach, 1};
    const std::vector<Place> places = BestPlaces(witnesses, film.displayWidth, film.displayHeight, near);
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

PictureVerdict JudgePicture(std::span<const Grab> grabs, const ReferenceFilm& film) {
    PictureVerdict verdict;
    const auto refuse = [&verdict](std::string complaint) {
        verdict.complaint = std::move(complaint);
        return verdict;
    };
    if (grabs.size() < kFewestPictures || film.frames.empty()) {
        return refuse("too few pictures to judge");
    }
    if (!AreOfOneSize(grabs)) {
        return refuse("the window changed its size");
    }
    const auto [place, alignment] = Locate(grabs, film);
    const std::vector<Thumbnail> pictures = Cut(grabs, place.rect, film);
    if (pictures.empty()) {
        return refuse("the window is too small");
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

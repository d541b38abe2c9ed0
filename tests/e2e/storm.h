#pragma once

#include "tests/e2e/player.h"

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Something that is done to the player from outside.
struct StormStep {
    std::string text; // what it is, for people
    std::function<void()> run;
};

// An endless row of random steps: commands, messages, keys, mouse, sizes, places, drops of films and of files
// that are none, dialogs that are opened and left. The same seed gives the same row. Nothing in it ends the
// player, and nothing reaches beyond its picture, where there may be a button that does.
class Storm {
public:
    // The player must outlive the object and what it returns.
    Storm(Player& stormedPlayer, std::uint32_t seed);

    [[nodiscard]] StormStep Next();

private:
    [[nodiscard]] int Random(int count); // 0 to count - 1
    template <class Container>
    [[nodiscard]] const auto& OneOf(const Container& choices) {
        return choices[static_cast<std::size_t>(Random(static_cast<int>(std::size(choices))))];
    }

    [[nodiscard]] StormStep Command();
    [[nodiscard]] StormStep CommandWithoutRow();
    [[nodiscard]] StormStep Message();
    [[nodiscard]] StormStep Keys();
    [[nodiscard]] StormStep Place();
    [[nodiscard]] StormStep Show();
    [[nodiscard]] StormStep FullScreen();
    [[nodiscard]] StormStep Mouse();
    [[nodiscard]] StormStep Drop();
    [[nodiscard]] StormStep Dialog();
    [[nodiscard]] StormStep Pause();

    void BringToFront() const;
    void Restore() const;
    // The part of the picture that mouse and drags keep to; empty when there is too little of it.
    [[nodiscard]] Rect SafePart() const;
    void OpenAndLeave(WPARAM command, WPARAM answer) const;

    Player& player;
    std::mt19937 generator;
    std::vector<int> commands;
};

} // namespace brindlecast::testing

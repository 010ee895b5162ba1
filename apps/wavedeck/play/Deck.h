#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ChainKind.h"

namespace program {

/// A deck that a person may choose: the chain of one client.
struct Deck {
    std::string_view name;  ///< also the client's
    wavedeck::driver::ChainKind kind;
    std::span<const std::string_view> stages;  ///< in the order in which they are called
    std::string_view strategy;
};

/// Names of all decks, with blockflow those whose data comes from a block-diagram simulation.
std::vector<std::string_view> deckNames(bool blockflow);

/// The deck of a name, with blockflow the one whose data comes from a block-diagram simulation. Throws UsageError
/// naming those there are.
const Deck& findDeck(std::string_view name, bool blockflow);

/// Names of the decks that are played when none is chosen.
std::vector<std::string> defaultDecks();

/// The deck and the path of `--traces [DECK=]PATH`; no deck where what stands before an equals sign is no plain word of
/// letters, digits and underscores. Whether the deck is there is not looked at.
struct TracesTarget {
    std::string deck;
    std::string path;
};
TracesTarget splitTraces(const std::string& text);

}  // namespace program

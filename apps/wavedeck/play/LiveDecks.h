#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "DeckSession.h"
#include "LiveServer.h"

namespace program {

/// The decks of a session on the live display: what browsers are told of them, and what they tune.
class LiveDecks {
public:
    /// address  text of `--serve`. The decks must outlive this. Throws UsageError if the address cannot be served.
    LiveDecks(const std::string& address, const std::vector<std::unique_ptr<DeckSession>>& decks);

    /// Hands a deck's message to the browsers.
    void publish(const DeckSession& deck, const std::string& event, const std::string& message, const UpdateCost& cost);

    /// From now on a tune is followed by a replay of what the deck holds, so that its effect shows.
    void endInput();
    /// Decks that were tuned after the end of the input and want a replay, each once.
    std::vector<DeckSession*> takeTuned();

    /// Where a browser finds the page.
    std::string address() const { return server_->address(); }

private:
    std::string describe() const;
    std::string tune(const TuneRequest& request);

    const std::vector<std::unique_ptr<DeckSession>>& decks_;
    std::atomic<bool> inputEnded_{false};
    std::mutex mutex_;
    std::vector<DeckSession*> tuned_;
    std::unique_ptr<LiveServer> server_;  ///< last: its threads use all the others
};

}  // namespace program

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DeckSession.h"
#include "Exports.h"
#include "InputSummary.h"
#include "LiveDecks.h"
#include "MessageFile.h"
#include "MessageText.h"
#include "PlayCommand.h"
#include "Report.h"
#include "SignalReader.h"

namespace program {

/// `wavedeck play`: reads the inputs frame by frame, hands them to every deck, sends the messages out and gathers the
/// report.
class PlaySession {
public:
    /// Opens inputs and outputs and makes the decks. Throws UsageError, and what the library says of its options.
    explicit PlaySession(const PlayCommand& command);

    /// Plays until the inputs end, a stop is asked for, or nobody reads the messages any more.
    void play();

    /// What was measured so far.
    Report report();

    /// Whether a spectrum has failed its masks.
    bool limitFailed();

    /// What ended the play when an input turned out to be unusable in its midst, or an output could not be written;
    /// empty: nothing.
    const std::string& fault() const { return fault_; }

private:
    using Clock = std::chrono::steady_clock;

    /// Reads to the end and sends what comes of it.
    void playInputs();
    /// Runs a call; what it finds to be at fault ends the play, and what was measured so far stays.
    void keepFault(const std::function<void()>& call);
    void openInputs(const PlayCommand& command);
    void openCoefficients(const PlayCommand& command);
    void makeDecks(const PlayCommand& command);
    SessionFacts sessionFacts(const PlayCommand& command) const;
    std::vector<DeckSettings> settingsOf(const std::vector<const Deck*>& decks, const PlayCommand& command);
    /// Tells where the measurements of a deck do not reach as far back as its display.
    void warnOfLongSpan(const Deck& deck, const SessionFacts& session, const DeckSettings& settings);
    /// Reads the next frame of every input; false when all have ended.
    bool readFrame();
    /// The same, and false where an input is at fault.
    bool readFrameIfGood();
    /// Moves the decks to the centre frequencies of the frame in hand.
    void followCenterFrequencies();
    /// Hands the frame in hand to every deck and sends what is due.
    void feed();
    /// Whether a simulation has stepped farther than its display was shown.
    bool hasToShow() const;
    /// Shows every display the next step of its simulation and sends what is due.
    void show();
    /// Whether the clock asks for the next frame while displays are behind; not while a pacer holds a simulation.
    bool isFrameDue(Clock::time_point begin) const;
    void sendIfDue(DeckSession& deck);
    void send(DeckSession& deck);
    /// Keeps the display up after the end of the input until a stop is asked for.
    void serveOn();
    /// When so many seconds of the inputs are over at the speed that was asked for.
    Clock::time_point dueTime(double seconds, Clock::time_point begin) const;
    /// Seconds that were played of the input of which most was.
    double played() const;
    std::optional<double> duration() const;

    // options
    std::size_t frameSize_ = 0;    ///< samples of the first input
    std::optional<double> speed_;  ///< times real time; none: as fast as it goes
    // state
    std::vector<std::unique_ptr<SignalReader>> inputs_;
    std::vector<InputSummary> summaries_;
    std::vector<std::unique_ptr<DeckSession>> decks_;
    std::optional<MessageFile> messages_;
    std::optional<Exports> exports_;
    std::optional<LiveDecks> live_;  ///< behind the decks: its threads tune them
    bool readerGone_ = false;
    std::string fault_;
    std::uint64_t frames_ = 0;
    std::uint64_t samples_ = 0;              ///< of the first input
    std::vector<double> centerFrequencies_;  ///< Hz, of the frame in hand, one a signal
    std::vector<std::string> warnings_;
    // scratch
    std::vector<std::vector<double>> frame_;
    wavedeck::driver::MessageText messageText_;
};

}  // namespace program

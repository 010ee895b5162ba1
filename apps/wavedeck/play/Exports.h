#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "AnnotationList.h"
#include "DeckSession.h"
#include "LineFile.h"
#include "PlayCommand.h"
#include "SignalReader.h"

namespace program {

/// The files that a play leaves behind beside its messages: traces, sweeps, and annotations of the recording.
class Exports {
public:
    using Message = Poco::SharedPtr<Poco::JSON::Object>;

    /// Throws UsageError when a file cannot be written or is there already, or when the decks don't measure what it
    /// asks for.
    Exports(const PlayCommand& command, const std::vector<std::unique_ptr<DeckSession>>& decks,
            const std::vector<std::unique_ptr<SignalReader>>& inputs);

    /// Takes account of an update of a deck.
    /// samples  of the first input that the deck was handed so far
    /// Returns false when nobody reads the sweeps any more.
    bool noteUpdate(DeckSession& deck, const Message& message, std::uint64_t samples);

    /// Writes what is written at the end.
    void finish();

    /// What a person should know of the files.
    const std::vector<std::string>& warnings() const { return warnings_; }

private:
    struct Traces {
        DeckSession* deck;
        std::string path;
        Message message;  ///< the deck's last
    };

    void prepareTraces(const std::string& text, const std::vector<std::unique_ptr<DeckSession>>& decks);
    void prepareSweep(const std::string& path, const std::vector<std::unique_ptr<SignalReader>>& inputs);
    void prepareAnnotations(const PlayCommand& command, const std::vector<std::unique_ptr<SignalReader>>& inputs);
    /// When the samples that a deck was handed last were taken, if the recording tells.
    std::optional<UtcTime> recordedTime(DeckSession& deck) const;
    bool writeSweep(std::uint64_t samples);
    void annotate(std::uint64_t samples);
    void writeTraces(const Traces& traces) const;

    // options
    Existing existing_;
    SignalFacts facts_;  ///< of the first input
    std::vector<Traces> traces_;
    std::string annotationsPath_;
    // derived
    DeckSession* spectrum_ = nullptr;  ///< the deck that shows spectra
    nlohmann::ordered_json metadata_;  ///< of the recording, without what is found now
    // state
    std::optional<LineFile> sweep_;
    AnnotationList annotations_;
    std::uint64_t sweptSamples_ = 0;
    std::uint64_t sweptSpectra_ = 0;
    std::uint64_t annotatedSamples_ = 0;
    double passedTests_ = 0.0;
    double totalTests_ = 0.0;
    std::vector<std::string> warnings_;
};

}  // namespace program

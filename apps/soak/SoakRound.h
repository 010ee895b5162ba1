#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "BlockflowSimulation.h"
#include "DeckClient.h"
#include "MessageText.h"
#include "RandomChain.h"
#include "RandomOptions.h"

namespace soak {

/// What rounds have met so far.
struct Tally {
    std::uint64_t rounds = 0, steps = 0, frames = 0, messages = 0, queries = 0;
    std::map<std::string, std::uint64_t> refusals;  ///< what stages and driver threw, by type and text
    std::vector<std::string> faults;                ///< what must not be
    std::uint64_t messageHash = 0;                  ///< over the texts of all messages
};

/// The life of one client with a random chain: setups, frames, tunings, size changes, steps back, restarts, replays,
/// updates and queries in random order. What a stage throws at nonsense is counted; memory is the sanitizers' matter.
class SoakRound {
public:
    /// queries  names of the library's query functions
    SoakRound(const wavedeck::driver::StageLibrary& library, const std::vector<ChainForm>& forms,
              const std::vector<std::string>& queries, std::uint64_t seed, Tally& tally);
    ~SoakRound();

    void run(int steps);

    const char* chainKind() const { return wavedeck::driver::chainKindName(form_.kind); }

private:
    class Input;

    wavedeck::driver::ClientFacts randomFacts();
    void buildChain();
    void attempt(void (SoakRound::*step)());
    void step();
    void feed();
    void feedOddly();
    void simulate();
    void tune();
    void setUp();
    void resize();
    void changeClient();
    void replay();
    void update();
    void query();
    ListLengths lengths() const;

    const wavedeck::driver::StageLibrary& library_;
    const std::vector<std::string>& queries_;
    Tally& tally_;
    RandomNumbers random_;
    const ChainForm& form_;
    std::vector<const dspwavedecks::catalogue::Stage*> stages_;
    std::vector<int> channels_;
    std::unique_ptr<wavedeck::driver::DeckClient> client_;
    std::unique_ptr<Input> input_;
    std::unique_ptr<wavedeck::driver::BlockflowSimulation> simulation_;
    wavedeck::driver::MessageText text_;
};

}  // namespace soak

#pragma once

#include <memory>
#include <vector>

#include "DeckClient.h"
#include "InputBytes.h"
#include "MessageText.h"
#include "StageLibrary.h"

namespace fuzz {

/// The measurement library, loaded once.
const wavedeck::driver::StageLibrary& stageLibrary();

/// A client whose chain and whose calls an input decides. What the library throws is as good as any other answer.
class RandomClient {
public:
    using Call = void (RandomClient::*)();

    /// Makes a client and makes calls until the input is used up. It chooses among these calls; one that stands there
    /// twice is chosen more often.
    static void play(const std::uint8_t* data, std::size_t size, const std::vector<Call>& calls);

    void tune();
    void sendAsIs();
    void frame();
    void frameAsIs();
    void replay();
    void update();
    void query();
    void resize();
    void rollback();
    void reset();
    void setup();
    void writeBoard();
    void changeClient();

private:
    explicit RandomClient(InputBytes& input);
    void addStages();
    std::vector<double> samples(std::size_t count);
    std::string randomStage();

    InputBytes& input_;
    wavedeck::driver::ClientFacts facts_;
    std::vector<int> numChannels_;
    std::vector<int> frameSizes_;
    std::vector<std::string> stages_;
    std::unique_ptr<wavedeck::driver::DeckClient> client_;
    wavedeck::driver::MessageText messageText_;
};

}  // namespace fuzz

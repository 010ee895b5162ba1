#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DeckClient.h"
#include "MessageText.h"
#include "ScriptFrames.h"
#include "ScriptValue.h"
#include "StageLibrary.h"

namespace program {

/// A script at work: a client with its chain, and the steps to take with it. The whole script is checked before the
/// first step runs.
class ScriptRunner {
public:
    /// Throws UsageError "line N: ...".
    ScriptRunner(const ScriptValue& script, const wavedeck::driver::StageLibrary& library);

    std::size_t numSteps() const { return steps_.size(); }

    /// Takes a step; returns its result as a line of JSON without the line end. What the library throws is part of the
    /// result.
    std::string run(std::size_t step);

private:
    /// What a step has to show beside the board.
    struct Result {
        std::optional<std::string> event;
        std::optional<std::string> message;
        std::optional<std::string> query;
    };

    using Action = std::function<void(Result&)>;

    struct Step {
        Action take;
        bool showOutputs = false;
    };

    void makeChain(const ScriptValue& script);
    Step readStep(const ScriptValue& value);
    Action readAction(const ScriptValue& value);
    Action readFrames(const ScriptValue& value, const ScriptValue* repeat);
    Action readUpdate(const ScriptValue& value);
    Action readQuery(const ScriptValue& value);
    Action readStageAction(const std::string& verb, const ScriptValue& value);
    /// The name of a stage of the chain, or nothing for "all".
    std::optional<std::string> readTarget(const ScriptValue& value) const;
    std::string outputs() const;
    std::vector<std::pair<std::string, std::string>> watched();

    const wavedeck::driver::StageLibrary& library_;
    std::unique_ptr<wavedeck::driver::DeckClient> client_;
    std::vector<std::string> watch_;
    ScriptFrame::TestSignals testSignals_;
    std::vector<Step> steps_;
    wavedeck::driver::MessageText messageText_;
};

/// `wavedeck run`: reads the file ("-": standard input), runs its script and prints one line a step. Throws UsageError
/// "FILE: line N: ..." for a faulty script.
void runScript(const std::string& path);

}  // namespace program

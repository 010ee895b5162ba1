#include "checkOutputs.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "Deck.h"
#include "UsageError.h"
#include "openSigmf.h"

namespace program {
namespace {

/// An option and the path behind it.
using Output = std::pair<std::string, std::string>;

std::vector<Output> outputsOf(const PlayCommand& command) {
    std::vector<Output> outputs{
        {"--messages", command.messages}, {"--sweep", command.sweep}, {"--annotations", command.annotations}};
    for (const auto& text : command.traces) {
        outputs.emplace_back("--traces", splitTraces(text).path);
    }
    std::erase_if(outputs, [](const Output& output) { return output.second.empty(); });
    return outputs;
}

bool areSame(const std::string& one, const std::string& other) {
    std::error_code error;
    return one == other ||
           (std::filesystem::is_regular_file(one, error) && std::filesystem::equivalent(one, other, error) && !error);
}

/// The files that an input is read from.
std::vector<std::string> filesOf(const std::string& input) {
    return isSigmf(input) ? sigmfFiles(input) : std::vector<std::string>{input};
}

/// Annotations may take the place of the metadata that they hold all of.
bool mayReplace(const std::string& option, const std::string& input, const std::string& file) {
    return option == "--annotations" && isSigmf(input) && file.ends_with(".sigmf-meta");
}

}  // namespace

void checkOutputs(const PlayCommand& command) {
    const auto outputs = outputsOf(command);
    if (command.annotations == "-") {
        throw UsageError("--annotations: wants a file, not standard output");
    }
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const auto& [option, path] = outputs[i];
        for (std::size_t j = 0; j < i; ++j) {
            if (areSame(path, outputs[j].second)) {
                throw UsageError(option + ": " + outputs[j].first + " goes to " +
                                 (path == "-" ? "standard output" : path) + " too");
            }
        }
        for (const auto& input : command.inputs) {
            for (const auto& file : filesOf(input)) {
                if (path != "-" && areSame(path, file) && !mayReplace(option, input, file)) {
                    throw UsageError(option + ": " + path + " is an input");
                }
            }
        }
    }
}

}  // namespace program

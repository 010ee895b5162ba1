#include "recordingMetadata.h"

#include <filesystem>
#include <string_view>

#include "SigmfMetadata.h"
#include "openSigmf.h"

namespace program {
namespace {

using Json = nlohmann::ordered_json;

constexpr auto datasetKey = "core:dataset";
constexpr std::string_view datasetExtension = ".sigmf-data";

/// Names the file of samples, unless it is the one that goes with metadata of that path anyway.
void pointAt(const std::filesystem::path& dataset, const std::string& path, Json& global) {
    auto usual = std::filesystem::path(path);
    usual.replace_extension(datasetExtension);
    if (usual.filename() != dataset.filename()) {
        global[datasetKey] = dataset.filename().string();
    }
}

Json describeRecording(const std::string& input, const std::string& path) {
    auto metadata = parseSigmfText(input, readSigmfText(input));
    auto& global = metadata["global"];
    if (input.ends_with(".sigmf")) {
        return metadata;  // the samples are within the archive, under the name that goes with its metadata
    }
    if (!global.contains(datasetKey)) {
        pointAt(std::filesystem::path(input).replace_extension(datasetExtension), path, global);
    }
    return metadata;
}

Json describeInput(const std::string& input, const SignalFacts& facts, const std::string& path) {
    Json global{{"core:version", "1.0.0"},
                {"core:sample_rate", facts.sampleRate},
                {"core:num_channels", facts.channels},
                {"core:recorder", "wavedeck"}};
    if (facts.datatype.empty() || input == "-") {
        global["core:datatype"] = facts.isComplex ? "cf64_le" : "rf64_le";
        global["core:metadata_only"] = true;
        global["core:description"] = "annotations of " + facts.name + " (" + facts.format + ")";
    } else {
        global["core:datatype"] = facts.datatype;
        pointAt(input, path, global);
    }
    Json capture{{"core:sample_start", 0}};
    if (facts.centerFrequency != 0.0) {
        capture["core:frequency"] = facts.centerFrequency;
    }
    return {{"global", global}, {"captures", Json::array({capture})}, {"annotations", Json::array()}};
}

}  // namespace

Json recordingMetadata(const std::string& input, const SignalFacts& facts, const std::string& path) {
    return isSigmf(input) ? describeRecording(input, path) : describeInput(input, facts, path);
}

}  // namespace program

#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "RawReader.h"
#include "RecordedTimes.h"
#include "SampleFormat.h"

namespace program {

/// What a SigMF recording's metadata say of its samples.
struct SigmfMetadata {
    SampleFormat format;
    std::optional<double> sampleRate;  ///< Hz
    int channels = 1;
    std::uint64_t firstIndex = 0;  ///< index that the first sample of the dataset bears
    std::uint64_t trailingBytes = 0;
    std::string dataset;             ///< name of the file of samples where it is not that of the metadata; else empty
    bool isWithoutData = false;      ///< the recording is said to have no samples
    std::vector<RawRun> runs;        ///< one a capture, and one in front of a first capture that begins later
    RecordedTimes recorded;          ///< when the captures began
    std::string checksum;            ///< SHA-512 of the dataset in hexadecimal digits; empty when not told
    std::vector<std::string> notes;  ///< what could not be understood and is passed over
};

/// The JSON of metadata. Throws UsageError that tells the line of a fault.
/// name  for the message
nlohmann::ordered_json parseSigmfText(const std::string& name, const std::string& text);

/// Takes the metadata apart. Throws UsageError that names the field at fault.
SigmfMetadata readSigmfMetadata(const std::string& name, const nlohmann::ordered_json& metadata);

}  // namespace program

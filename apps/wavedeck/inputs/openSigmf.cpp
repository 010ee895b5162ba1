#include "openSigmf.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "EngineeringNumber.h"
#include "RawReader.h"
#include "Sha512.h"
#include "SigmfMetadata.h"
#include "StopRequest.h"
#include "TarArchive.h"
#include "UsageError.h"

namespace program {
namespace {

constexpr std::string_view metadataExtension = ".sigmf-meta";
constexpr std::string_view datasetExtension = ".sigmf-data";
constexpr std::string_view archiveExtension = ".sigmf";
constexpr std::string_view collectionExtension = ".sigmf-collection";

std::string withoutExtension(const std::string& path, std::string_view extension) {
    return path.substr(0, path.size() - extension.size());
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// The name of the metadata for messages.
std::string metadataName(const std::string& input) {
    return input.ends_with(datasetExtension)
               ? withoutExtension(input, datasetExtension) + std::string(metadataExtension)
               : input;
}

std::string readText(const std::string& path, std::uint64_t position, std::optional<std::uint64_t> bytes) {
    ByteSource source(path);
    constexpr std::size_t most = std::size_t{256} << 20U;
    const auto size = bytes.value_or(source.size().value_or(0));
    if (size > most) {
        throw UsageError(path + ": the metadata are larger than " + std::to_string(most >> 20U) + " MiB");
    }
    source.seek(position);
    std::string text(static_cast<std::size_t>(size), '\0');
    text.resize(source.read(reinterpret_cast<unsigned char*>(text.data()), text.size()));
    return text;
}

/// The file of an archive with the extension. Throws UsageError if there is none, or more than one recording.
TarEntry findEntry(const std::string& archive, std::string_view extension) {
    const auto entries = listTarArchive(archive);
    const auto isWanted = [&](const TarEntry& entry) { return entry.name.ends_with(extension); };
    const auto found = std::find_if(entries.begin(), entries.end(), isWanted);
    if (found == entries.end()) {
        throw UsageError(archive + ": the archive holds no file *" + std::string(extension));
    }
    const auto other = std::find_if(found + 1, entries.end(), isWanted);
    if (other != entries.end()) {
        throw UsageError(archive + ": the archive holds several recordings, " + found->name + " and " + other->name +
                         " among them: take it apart and play one of them");
    }
    return *found;
}

/// Where the samples lie.
struct Dataset {
    std::unique_ptr<ByteSource> source;
    std::uint64_t leadingBytes = 0;
    std::uint64_t trailingBytes = 0;
};

Dataset openDataset(const std::string& input, const SigmfMetadata& metadata) {
    if (input.ends_with(archiveExtension)) {
        const auto entry = findEntry(input, datasetExtension);
        auto source = std::make_unique<ByteSource>(input);
        const auto behind = source->size().value_or(0) - entry.position - entry.bytes;
        return {std::move(source), entry.position, behind};
    }
    if (input.ends_with(datasetExtension)) {
        return {std::make_unique<ByteSource>(input)};
    }
    if (metadata.isWithoutData) {
        throw UsageError(input + ": global.core:metadata_only: the recording has no samples");
    }
    if (metadata.dataset.empty()) {
        return {
            std::make_unique<ByteSource>(withoutExtension(input, metadataExtension) + std::string(datasetExtension))};
    }
    const auto field = input + ": global.core:dataset: ";
    if (metadata.dataset.find('/') != std::string::npos) {
        throw UsageError(field + '`' + metadata.dataset + "` is not the name of a file alone");
    }
    try {
        return {std::make_unique<ByteSource>(folderOf(input) + metadata.dataset)};
    } catch (const UsageError& error) {
        throw UsageError(field + error.what());
    }
}

/// Compares the dataset's bytes with the sum in the metadata; returns what the report says of it.
std::string verify(const std::string& name, const Dataset& dataset, const SigmfMetadata& metadata, bool isWanted) {
    if (!isWanted) {
        return metadata.checksum.empty() ? "" : "SHA-512 not compared; --verify does";
    }
    if (metadata.checksum.empty()) {
        throw UsageError("--verify: " + name + ": global.core:sha512: is missing");
    }
    const auto size = dataset.source->size();
    if (!size) {
        throw UsageError("--verify: " + dataset.source->name() + " cannot be read twice");
    }
    const auto sum =
        sha512(*dataset.source, dataset.leadingBytes, *size - dataset.leadingBytes - dataset.trailingBytes);
    dataset.source->seek(0);
    if (StopRequest::requested()) {
        return "SHA-512 not compared";
    }
    auto expected = metadata.checksum;
    std::transform(expected.begin(), expected.end(), expected.begin(),
                   [](char c) { return c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c; });
    if (sum != expected) {
        throw UsageError(dataset.source->name() + ": the samples are not those that were written: their SHA-512 is " +
                         sum.substr(0, 16) + "..., and global.core:sha512 is " + expected.substr(0, 16) + "...");
    }
    return "SHA-512 agrees";
}

/// Throws UsageError for a header or a trailer that is longer than the file around it.
void checkPadding(const std::string& name, const Dataset& dataset, const SigmfMetadata& metadata) {
    const auto size = dataset.source->size();
    if (!size) {
        return;
    }
    const auto bytes = *size - dataset.leadingBytes - dataset.trailingBytes;
    const auto check = [&](const char* field, std::uint64_t padding) {
        if (padding > bytes) {
            throw UsageError(name + ": " + field + ": " + std::to_string(padding) + " bytes, and the samples have " +
                             std::to_string(bytes));
        }
    };
    check("global.core:trailing_bytes", metadata.trailingBytes);
    check("captures[0].core:header_bytes", metadata.runs.front().headerBytes);
}

double sampleRate(const std::string& input, const SigmfMetadata& metadata, const std::string& option) {
    if (metadata.sampleRate && !option.empty()) {
        throw UsageError("--rate: " + input + " has a rate of its own, " + formatQuantity(*metadata.sampleRate, "Hz"));
    }
    if (!metadata.sampleRate && option.empty()) {
        throw UsageError(input + ": global.core:sample_rate: is missing; --rate HZ gives it");
    }
    return metadata.sampleRate ? *metadata.sampleRate : readPositiveNumber("--rate", option);
}

}  // namespace

bool isSigmf(const std::string& input) {
    return input.ends_with(metadataExtension) || input.ends_with(datasetExtension) ||
           input.ends_with(archiveExtension) || input.ends_with(collectionExtension);
}

std::vector<std::string> sigmfFiles(const std::string& input) {
    std::vector<std::string> files{input, metadataName(input)};
    if (!input.ends_with(metadataExtension)) {
        return files;
    }
    files.push_back(withoutExtension(input, metadataExtension) + std::string(datasetExtension));
    try {
        const auto metadata = parseSigmfText(input, readSigmfText(input));
        files.push_back(folderOf(input) + metadata.at("global").at("core:dataset").get<std::string>());
    } catch (const UsageError&) {
        return files;  // opening it will say what is wrong
    } catch (const nlohmann::json::exception&) {
        return files;  // no other dataset
    }
    return files;
}

std::string readSigmfText(const std::string& input) {
    if (input.ends_with(archiveExtension)) {
        const auto entry = findEntry(input, metadataExtension);
        return readText(input, entry.position, entry.bytes);
    }
    return readText(metadataName(input), 0, std::nullopt);
}

std::unique_ptr<SignalReader> openSigmf(const std::string& input, const InputOptions& options, double factor) {
    const auto name = metadataName(input);
    auto metadata = readSigmfMetadata(name, parseSigmfText(name, readSigmfText(input)));
    auto dataset = openDataset(input, metadata);
    checkPadding(name, dataset, metadata);
    SignalFacts facts;
    facts.name = input;
    facts.format = "SigMF, " + metadata.format.meaning();
    facts.scale = metadata.format.scale();
    facts.sampleRate = sampleRate(name, metadata, options.rate);
    facts.channels = metadata.channels;
    facts.isComplex = metadata.format.isComplex;
    facts.firstIndex = metadata.firstIndex;
    facts.recorded = metadata.recorded;
    facts.checksum = verify(name, dataset, metadata, options.verify);
    if (std::any_of(metadata.runs.begin(), metadata.runs.end(), [](const RawRun& run) { return run.factor != 1.0; })) {
        facts.scale = "acquisition scale factor " +
                      formatQuantity(metadata.runs.front().factor / metadata.format.fullScale, "", 15) +
                      (metadata.runs.size() > 1 ? " of the first capture" : "");
    }
    if (factor != 1.0) {
        facts.scale += ", times " + formatQuantity(factor, "", 15);
    }
    for (auto& run : metadata.runs) {
        run.factor *= factor;
    }
    metadata.runs.front().headerBytes += dataset.leadingBytes;
    return std::make_unique<RawReader>(std::move(dataset.source), metadata.format, std::move(facts),
                                       std::move(metadata.runs), metadata.trailingBytes + dataset.trailingBytes,
                                       std::move(metadata.notes));
}

}  // namespace program

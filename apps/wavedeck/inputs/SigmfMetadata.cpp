#include "SigmfMetadata.h"

#include <cmath>
#include <limits>
#include <utility>

#include "UsageError.h"

namespace program {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::uint64_t largestCount = std::uint64_t{1} << 53U;

/// An object of the metadata, with its place for messages.
class Fields {
public:
    Fields(std::string name, std::string place, const Json& json)
        : name_(std::move(name)), place_(std::move(place)), json_(json) {
        if (!json_.is_object()) {
            throw UsageError(name_ + ": " + place_ + ": is no object");
        }
    }

    [[noreturn]] void fail(const char* key, const std::string& what) const { throw UsageError(remark(key, what)); }

    const Json* find(const char* key) const {
        const auto found = json_.find(key);
        return found == json_.end() || found->is_null() ? nullptr : &*found;
    }

    std::optional<std::string> text(const char* key) const {
        const auto* value = find(key);
        if (value == nullptr) {
            return std::nullopt;
        }
        if (!value->is_string()) {
            fail(key, "is no text");
        }
        return value->get<std::string>();
    }

    std::optional<double> number(const char* key) const {
        const auto* value = find(key);
        if (value == nullptr) {
            return std::nullopt;
        }
        if (!value->is_number() || !std::isfinite(value->get<double>())) {
            fail(key, "is no number");
        }
        return value->get<double>();
    }

    /// What is wrong with a field that can be passed over.
    std::string remark(const char* key, const std::string& what) const {
        return name_ + ": " + place_ + "." + key + ": " + what;
    }

    std::uint64_t count(const char* key, std::uint64_t fallback) const {
        const auto value = number(key);
        if (!value) {
            return fallback;
        }
        if (*value < 0.0 || *value > static_cast<double>(largestCount) || *value != std::trunc(*value)) {
            fail(key, "is no whole number from 0 to 2^53");
        }
        return static_cast<std::uint64_t>(*value);
    }

    bool flag(const char* key) const {
        const auto* value = find(key);
        if (value != nullptr && !value->is_boolean()) {
            fail(key, "is neither true nor false");
        }
        return value != nullptr && value->get<bool>();
    }

private:
    std::string name_;
    std::string place_;
    const Json& json_;
};

SampleFormat readDatatype(const Fields& global) {
    constexpr auto key = "core:datatype";
    const auto name = global.text(key);
    if (!name) {
        global.fail(key, "is missing");
    }
    const auto format = findSampleFormat(*name);
    if (!format || (!name->starts_with('c') && !name->starts_with('r')) || name->substr(1).starts_with('s')) {
        global.fail(key, "`" + *name + "` is no datatype: c or r, then f32 f64 i32 i16 u32 u16 i8 u8, then _le or _be");
    }
    if (!format->namesByteOrder) {
        global.fail(key, "`" + *name + "` does not say the order of the bytes: _le or _be");
    }
    return *format;
}

RawRun readCapture(const Fields& capture, const SigmfMetadata& metadata, std::size_t bytesPerTime) {
    RawRun run;
    constexpr auto startKey = "core:sample_start";
    const auto start = capture.count(startKey, 0);
    if (start < metadata.firstIndex) {
        capture.fail(startKey, "lies before the first sample, core:offset");
    }
    run.firstSample = start - metadata.firstIndex;
    if (!metadata.runs.empty() && run.firstSample < metadata.runs.back().firstSample) {
        capture.fail(startKey, "lies before that of the capture in front of it");
    }
    run.headerBytes = capture.count("core:header_bytes", 0);
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max() / 4;
    if (run.firstSample > most / bytesPerTime) {
        capture.fail(startKey, "lies farther than any file reaches");
    }
    run.centerFrequency = capture.number("core:frequency").value_or(0.0);
    constexpr auto scaleKey = "capture_details:acq_scale_factor";
    if (const auto scale = capture.number(scaleKey)) {
        if (*scale == 0.0) {
            capture.fail(scaleKey, "is 0, which leaves nothing of the samples");
        }
        // The factor belongs to the digitizer's numbers, not to fractions of its full scale.
        run.factor = *scale * metadata.format.fullScale;
    }
    return run;
}

/// Takes the time at which a capture began. One that is no time is passed over, since the samples don't need it.
void readTime(const Fields& capture, SigmfMetadata& metadata) {
    constexpr auto key = "core:datetime";
    const auto text = capture.text(key);
    if (!text) {
        return;
    }
    if (const auto time = parseDateTime(*text)) {
        metadata.recorded.add(metadata.runs.back().firstSample, *time);
    } else {
        metadata.notes.push_back(capture.remark(key, '`' + *text + "` is no date and time of ISO 8601"));
    }
}

/// Tells of extensions that a reader should know and this one doesn't.
void readExtensions(const Fields& global, SigmfMetadata& metadata) {
    constexpr auto key = "core:extensions";
    const auto* extensions = global.find(key);
    if (extensions == nullptr || !extensions->is_array()) {
        return;
    }
    for (const auto& extension : *extensions) {
        const auto text = [&](const char* name) {
            return extension.is_object() && extension.contains(name) ? extension[name] : Json();
        };
        if (text("optional") == false && text("name").is_string() && text("name") != "capture_details") {
            metadata.notes.push_back(global.remark(
                key,
                '`' + text("name").get<std::string>() + "`, which the recording says is needed, is not known here"));
        }
    }
}

/// What the recording says of all of its captures.
SigmfMetadata readGlobal(const Fields& global) {
    SigmfMetadata metadata;
    metadata.format = readDatatype(global);
    metadata.sampleRate = global.number("core:sample_rate");
    if (metadata.sampleRate && !(*metadata.sampleRate > 0.0)) {
        global.fail("core:sample_rate", "is not above 0");
    }
    constexpr std::uint64_t mostChannels = 1024;
    const auto channels = global.count("core:num_channels", 1);
    if (channels < 1 || channels > mostChannels) {
        global.fail("core:num_channels", "is not within 1 to " + std::to_string(mostChannels));
    }
    metadata.channels = static_cast<int>(channels);
    metadata.firstIndex = global.count("core:offset", 0);
    metadata.trailingBytes = global.count("core:trailing_bytes", 0);
    metadata.dataset = global.text("core:dataset").value_or("");
    metadata.isWithoutData = global.flag("core:metadata_only");
    metadata.checksum = global.text("core:sha512").value_or("");
    readExtensions(global, metadata);
    return metadata;
}

/// Takes the captures as runs of samples, from the first sample on: of a recording without any, one run of all of it.
void readCaptures(const std::string& name, const Json& captures, SigmfMetadata& metadata) {
    const auto bytesPerTime =
        metadata.format.bytes * static_cast<std::size_t>(metadata.channels) * (metadata.format.isComplex ? 2 : 1);
    std::uint64_t headers = 0;
    for (std::size_t i = 0; i < captures.size(); ++i) {
        const Fields capture(name, "captures[" + std::to_string(i) + "]", captures[i]);
        metadata.runs.push_back(readCapture(capture, metadata, bytesPerTime));
        headers += metadata.runs.back().headerBytes;
        if (headers > largestCount) {
            capture.fail("core:header_bytes", "the headers are larger than any file");
        }
        readTime(capture, metadata);
    }
    if (metadata.runs.empty()) {
        metadata.runs.emplace_back();
    }
    if (metadata.runs.front().firstSample > 0) {
        // What stands before the first capture is played with its frequency and scale.
        auto before = metadata.runs.front();
        before.firstSample = 0;
        before.headerBytes = 0;
        metadata.runs.insert(metadata.runs.begin(), before);
    }
}

}  // namespace

Json parseSigmfText(const std::string& name, const std::string& text) {
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        std::string what = error.what();
        const auto at = what.find("line ");
        throw UsageError(name + ": no JSON: " + (at == std::string::npos ? what : what.substr(at)));
    } catch (const Json::out_of_range& error) {
        const std::string what = error.what();
        throw UsageError(name + ": not readable: " + what.substr(what.find("] ") + 2));
    }
}

SigmfMetadata readSigmfMetadata(const std::string& name, const Json& json) {
    const Fields whole(name, "metadata", json);
    if (whole.find("collection") != nullptr) {
        throw UsageError(name + ": is a collection of recordings; name one of them");
    }
    const auto* globalObject = whole.find("global");
    if (globalObject == nullptr) {
        throw UsageError(name + ": has no `global` object, so that it is no SigMF metadata");
    }
    SigmfMetadata metadata = readGlobal(Fields(name, "global", *globalObject));
    const auto* captures = whole.find("captures");
    if (captures != nullptr && !captures->is_array()) {
        throw UsageError(name + ": captures: is no list");
    }
    const Json none = Json::array();
    readCaptures(name, captures != nullptr ? *captures : none, metadata);
    return metadata;
}

}  // namespace program

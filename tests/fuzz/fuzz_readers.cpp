// Every reader of inputs: the first byte chooses one, the rest is its file.

#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "CoefficientReader.h"
#include "InputBytes.h"
#include "LimitedAllocation.h"
#include "UsageError.h"
#include "openInput.h"

namespace {

/// A kind of input: the name of its file, and what the command line says of it.
struct Kind {
    const char* file;
    program::InputOptions options = {};
};

// One line for each kind.
const std::array kinds{
    Kind{"input.wav"},
    Kind{"input.raw", {.format = "f32", .rate = "48k"}},
    Kind{"input.raw", {.format = "cf64", .rate = "48k", .channels = "2"}},
    Kind{"input.raw", {.format = "s16", .rate = "48k", .channels = "3", .seek = "0.0001", .loop = true}},
    Kind{"input.raw", {.format = "cs8", .rate = "48k", .duration = "0.0005"}},
    Kind{"input.raw", {.format = "f64", .rate = "1", .channels = "1024"}},
    Kind{"input.cu8", {.rate = "2.4M", .center = "100M"}},
    Kind{"input.sigmf"},
    Kind{"input.sigmf-meta"},
    Kind{"input.csv"},
    Kind{"input.csv", {.rate = "1k", .isIq = true, .seek = "0.002"}},
    Kind{"input.wav", {.isIq = true, .loop = true}},
};

const std::filesystem::path& folder() {
    static const std::filesystem::path made = [] {
        const auto path = std::filesystem::temp_directory_path() / ("wavedeck_fuzz_" + std::to_string(getpid()));
        std::filesystem::create_directories(path);
        std::ofstream(path / "input.sigmf-data") << std::string(96, 'x');
        std::atexit([] { std::filesystem::remove_all(folder()); });
        return path;
    }();
    return made;
}

/// Reads to the end, or as much as shows that there is no end soon.
void readAll(program::SignalReader& reader) {
    constexpr std::size_t points = 100;
    std::vector<double> frame;
    for (int i = 0; i < 100 && reader.read(points, frame) > 0; ++i) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const testsupport::AllocationLimit limit;
    fuzz::InputBytes input(data, size);
    const std::size_t which = input.below(kinds.size() + 2);
    try {
        if (which == kinds.size()) {
            readAll(*program::openInput("gen:" + input.rest(), {}));
            return 0;
        }
        const bool isCoefficients = which > kinds.size();
        const auto path = folder() / (isCoefficients ? "input.txt" : kinds[which].file);
        std::ofstream(path, std::ios::binary) << input.rest();
        if (isCoefficients) {
            program::CoefficientReader reader(path, 1.0);
            readAll(reader);
            return 0;
        }
        readAll(*program::openInput(path, kinds[which].options));
    } catch (const program::UsageError&) {
    }
    return 0;
}

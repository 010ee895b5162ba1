// Every reader of inputs: the first byte chooses one, the rest is its file.

#include <unistd.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "CoefficientReader.h"
#include "FailingAllocation.h"
#include "InputBytes.h"
#include "UsageError.h"
#include "openInput.h"

namespace {

/// A kind of input: the name of its file, and what the command line says of it.
struct Kind {
    const char* file;
    const char* format;
    const char* channels;
};

// One line for each kind.
constexpr std::array kinds{
    Kind{"input.wav", "", ""},     Kind{"input.raw", "f32", "1"},  Kind{"input.raw", "cf64", "2"},
    Kind{"input.raw", "s16", "3"}, Kind{"input.raw", "cs8", "1"},  Kind{"input.raw", "cu8", "2"},
    Kind{"input.raw", "u8", "1"},  Kind{"input.raw", "cs16", "1"}, Kind{"input.raw", "f64", "1024"},
};

const std::filesystem::path& folder() {
    static const std::filesystem::path made = [] {
        const auto path = std::filesystem::temp_directory_path() / ("wavedeck_fuzz_" + std::to_string(getpid()));
        std::filesystem::create_directories(path);
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
    const fuzz::AllocationLimit limit;
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
        program::InputOptions options;
        options.format = kinds[which].format;
        options.channels = kinds[which].channels;
        options.rate = options.format.empty() ? "" : "48k";
        readAll(*program::openInput(path, options));
    } catch (const program::UsageError&) {
    }
    return 0;
}

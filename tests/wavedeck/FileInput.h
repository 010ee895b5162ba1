#pragma once

#include <sndfile.h>
#include <unistd.h>

#include <filesystem>

#include "Test.h"
#include "UsageError.h"
#include "openInput.h"

/// A folder of its own for the files of a test.
class FileInput : public testing::Test {
protected:
    FileInput() : folder_(testing::TempDir() + "wavedeck_inputs_" + std::to_string(getpid()) + "/") {
        std::filesystem::create_directories(folder_);
    }
    ~FileInput() override { std::filesystem::remove_all(folder_); }

    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(folder_ + name, std::ios::binary) << bytes;
        return folder_ + name;
    }

    /// A WAV file of 16-bit samples: the canonical header of 44 bytes, then the samples.
    std::string writeWav(const std::string& name, const std::vector<std::int16_t>& samples, int channels) const {
        SF_INFO info{};
        info.samplerate = 8000;
        info.channels = channels;
        info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        SNDFILE* file = sf_open((folder_ + name).c_str(), SFM_WRITE, &info);
        sf_write_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
        sf_close(file);
        return folder_ + name;
    }

    const std::string& folder() const { return folder_; }

private:
    std::string folder_;
};

inline std::string errorOf(const std::string& input, const program::InputOptions& options) {
    try {
        program::openInput(input, options);
    } catch (const program::UsageError& error) {
        return error.what();
    }
    return "no error";
}

template <typename Number>
std::string bytesOf(std::initializer_list<Number> numbers) {
    return {reinterpret_cast<const char*>(numbers.begin()), numbers.size() * sizeof(Number)};
}

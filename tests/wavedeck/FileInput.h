#pragma once

#include <sndfile.h>
#include <unistd.h>

#include <cstring>
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

/// The next frame of at most so many points.
inline Values nextFrame(program::SignalReader& reader, std::size_t most) {
    Values frame;
    reader.read(most, frame);
    return frame;
}

/// The same numbers bit for bit, NaN included.
inline bool areSame(const Values& one, const Values& other) {
    return one.size() == other.size() && std::memcmp(one.data(), other.data(), one.size() * sizeof(double)) == 0;
}

/// What is wrong with an input when it is opened, or read.
inline std::string errorOf(const std::string& input, const program::InputOptions& options) {
    try {
        const auto reader = program::openInput(input, options);
        for (int i = 0; i < 10; ++i) {
            nextFrame(*reader, 1000);
        }
    } catch (const program::UsageError& error) {
        return error.what();
    }
    return "no error";
}

/// It is one line that holds the text.
inline void expectError(const std::string& input, const program::InputOptions& options, const std::string& text) {
    const auto error = errorOf(input, options);
    EXPECT_NE(error.find(text), std::string::npos) << text << " in: " << error;
    EXPECT_EQ(error.find('\n'), std::string::npos) << error;
}

/// A reader has as many notes as there are texts, and each holds its text.
inline void expectNotes(const program::SignalReader& reader, const std::vector<std::string>& texts) {
    ASSERT_EQ(reader.notes().size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_NE(reader.notes()[i].find(texts[i]), std::string::npos) << reader.notes()[i];
    }
}

template <typename Number>
std::string bytesOf(std::initializer_list<Number> numbers) {
    return {reinterpret_cast<const char*>(numbers.begin()), numbers.size() * sizeof(Number)};
}

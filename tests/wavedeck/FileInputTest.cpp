// Sound files and raw samples, sound and damaged.
#include "FileInput.h"

namespace {

TEST_F(FileInput, SoundFileComesChannelByChannelInFramesOfAnySize) {
    const auto path = writeWav("two.wav", {1, -1, 2, -2, 3, -3, 4, -4, 32767, -32768}, 2);
    for (const std::size_t points : {1U, 2U, 3U, 5U, 64U}) {
        const auto reader = program::openInput(path, {});
        EXPECT_EQ(reader->facts().sampleRate, 8000.0);
        EXPECT_EQ(reader->facts().channels, 2);
        EXPECT_EQ(reader->facts().length, 5U);
        Values left;
        Values right;
        Values frame;
        while (const auto n = reader->read(points, frame)) {
            append(left, part(frame, 0, n));
            append(right, part(frame, n, n));
        }
        EXPECT_EQ(left, (Values{1 / 32768.0, 2 / 32768.0, 3 / 32768.0, 4 / 32768.0, 32767 / 32768.0}));
        EXPECT_EQ(right, (Values{-1 / 32768.0, -2 / 32768.0, -3 / 32768.0, -4 / 32768.0, -1.0}));
        EXPECT_TRUE(reader->notes().empty());
    }
}

TEST_F(FileInput, UnusableFilesAreRefusedInOneLine) {
    const auto wav = writeWav("head.wav", {1, 2, 3}, 1);
    std::filesystem::resize_file(wav, 30);
    const program::InputOptions raw{"s16", "8k", "", ""};
    const std::tuple<std::string, program::InputOptions, const char*> rows[] = {
        {folder() + "none.wav", {}, "none.wav: No such file or directory"},
        {folder(), {}, "is a directory"},
        {folder(), raw, "is a directory"},
        {write("text.wav", "a text file\n"), {}, "text.wav: not a sound file"},
        {write("empty.wav", ""), {}, "empty.wav: not a sound file"},
        {wav, {}, "head.wav: not a sound file"},
        {folder() + "none.raw", raw, "none.raw: No such file or directory"},
        {"-", {}, "standard input: raw samples need --format"},
        {"x.raw", {"s16", "", "", ""}, "x.raw: raw samples need --rate"},
        {"x.raw", {"s17", "8k", "", ""}, "--format: `s17` is none of f32 f64"},
        {"x.raw", {"s16", "0", "", ""}, "--rate: 0 is not above 0"},
        {"x.raw", {"s16", "8kHz", "", ""}, "--rate: `8kHz` is not a number"},
        {"x.raw", {"s16", "8k", "0", ""}, "--channels: `0` is not a whole number"},
    };
    for (const auto& [input, options, expected] : rows) {
        expectError(input, options, expected);
    }
}

TEST_F(FileInput, RawFormatsDecodeToTheirScale) {
    const std::tuple<const char*, std::string, Values> rows[] = {
        {"f32", bytesOf<float>({0.25F, -INFINITY}), {0.25, -infinity}},
        {"f64", bytesOf<double>({0.1, nan}), {0.1, nan}},
        {"s16", bytesOf<std::int16_t>({-32768, 16384}), {-1.0, 0.5}},
        {"u8", bytesOf<std::uint8_t>({0, 192}), {-1.0, 0.5}},
        // Real parts, then imaginary parts.
        {"cf32", bytesOf<float>({1, 2, 3, 4}), {1, 3, 2, 4}},
        {"cf64", bytesOf<double>({1, 2, 3, 4}), {1, 3, 2, 4}},
        {"cs16", bytesOf<std::int16_t>({16384, -16384}), {0.5, -0.5}},
        {"cs8", bytesOf<std::int8_t>({-128, 64}), {-1.0, 0.5}},
        {"cu8", bytesOf<std::uint8_t>({0, 255}), {-127.5 / 128, 127.5 / 128}},
    };
    for (const auto& [format, bytes, values] : rows) {
        const auto reader = program::openInput(write("samples.raw", bytes), {format, "1M", "", ""});
        EXPECT_TRUE(areSame(nextFrame(*reader, 10), values)) << format;
    }
}

TEST_F(FileInput, ExtensionsTellTheFormat) {
    const std::pair<const char*, const char*> rows[] = {
        {"F32", "rf32_le"},   {"rf32", "rf32_le"},   {"ri16", "ri16_le"},   {"s16be", "ri16_be"},
        {"u16le", "ru16_le"}, {"f64_be", "rf64_be"}, {"cfile", "cf32_le"},  {"c16", "ci16_le"},
        {"c8", "ci8"},        {"ci32", "ci32_le"},   {"complex16u", "cu8"}, {"uc16", "cu16_le"},
    };
    for (const auto& [extension, datatype] : rows) {
        const auto path = write(std::string("samples.") + extension, std::string(64, '\0'));
        EXPECT_EQ(program::openInput(path, {"", "1M"})->facts().datatype, datatype) << extension;
    }
    for (const auto* extension : {"rf64", "c32", "c64", "file", "le", "bin"}) {
        const auto path = write(std::string("samples.") + extension, std::string(64, '\0'));
        EXPECT_NE(errorOf(path, {}).find("not a sound file"), std::string::npos) << extension;
    }
}

TEST_F(FileInput, RawComplexChannelsAndScaleAndRest) {
    // Two complex channels, two sample times, and three bytes more.
    const auto path = write("iq.raw", bytesOf<std::int8_t>({1, 2, 3, 4, 5, 6, 7, 8, 9, 9, 9}));
    const auto reader = program::openInput(path, {"cs8", "2M", "2", "128"});
    EXPECT_EQ(reader->facts().length, 2U);
    EXPECT_EQ(nextFrame(*reader, 1), (Values{1, 3, 2, 4}));
    expectNotes(*reader, {});
    EXPECT_EQ(nextFrame(*reader, 5), (Values{5, 7, 6, 8}));
    EXPECT_EQ(nextFrame(*reader, 5), Values{});
    expectNotes(*reader, {"the last 3 bytes"});
}

}  // namespace

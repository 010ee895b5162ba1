// SigMF recordings, tables, sound files above 4 GiB, and parts of all kinds of input.

#include "FileInput.h"

namespace {

using program::InputOptions;
using program::SignalReader;

/// All values of a reader's first row, in frames of a size that fits nothing.
Values firstRow(SignalReader& reader, std::size_t most = 1000) {
    Values row;
    Values frame;
    while (const auto n = reader.read(std::min<std::size_t>(7, most - row.size()), frame)) {
        append(row, part(frame, 0, n));
    }
    return row;
}

class Recording : public FileInput {
protected:
    std::string sigmf(const std::string& name, const std::string& global, const std::string& captures,
                      const std::string& samples) const {
        write(name + ".sigmf-data", samples);
        return write(name + ".sigmf-meta", "{\"global\":{" + global + "},\"captures\":[" + captures + "]}");
    }
    /// An archive of files of the folder.
    std::string tar(const std::string& name, const std::string& files) const {
        EXPECT_EQ(std::system(("tar -C " + folder() + " -cf " + folder() + name + ' ' + files).c_str()), 0);
        return folder() + name;
    }
};

/// The bytes of an integer of so many bytes, or of a float, as a datatype of SigMF has them.
std::string stored(const std::string& type, double number) {
    std::string bytes;
    const auto put = [&](auto value) { bytes.assign(reinterpret_cast<const char*>(&value), sizeof value); };
    if (type.starts_with("f64")) {
        put(number);
    } else if (type.starts_with('f')) {
        put(static_cast<float>(number));
    } else {
        put(static_cast<std::int64_t>(number));
        bytes.resize(static_cast<std::size_t>(std::stoi(type.substr(1)) / 8));
    }
    return type.ends_with("_be") ? std::string(bytes.rbegin(), bytes.rend()) : bytes;
}

TEST_F(Recording, EveryDatatypeOfSigmfDecodes) {
    // Zero and full scale of each: floats come as stored, unsigned bytes of complex samples have no step at zero.
    const std::tuple<const char*, double, double> types[] = {
        {"f32", 0, 1},         {"f64", 0, 1},   {"i32", 0, 2147483648.0},
        {"i16", 0, 32768},     {"i8", 0, 128},  {"u32", 2147483648.0, 2147483648.0},
        {"u16", 32768, 32768}, {"u8", 128, 128}};
    for (const auto& [name, zero, fullScale] : types) {
        for (const std::string order : {"_le", "_be", ""}) {
            const auto type = name + order;
            for (const bool isComplex : {false, true}) {
                const auto datatype = std::string(isComplex ? "c" : "r").append(type);
                const auto path = sigmf("t", "\"core:datatype\":\"" + datatype + R"(","core:sample_rate":5)", "",
                                        stored(type, zero + 3) + stored(type, zero + 5));
                if (order.empty() && std::string(name).find('8') == std::string::npos) {
                    expectError(path, {}, "order of the bytes");
                    continue;
                }
                const auto reader = program::openInput(path, {});
                EXPECT_EQ(reader->facts().isComplex, isComplex) << datatype;
                const double shift = datatype.starts_with("cu8") ? 0.5 : 0.0;
                EXPECT_EQ(nextFrame(*reader, 4), (Values{(3 + shift) / fullScale, (5 + shift) / fullScale}))
                    << datatype;
            }
        }
    }
}

TEST_F(Recording, CapturesHaveTheirHeadersFrequenciesAndScales) {
    // Two channels; indices count from 100; three captures, the second of the first one's frequency, and 3 bytes
    // behind.
    const auto samples = bytesOf<std::int8_t>({9, 9, 1, -1, 2, -2, 9, 3, -3, 4, -4, 5, -5, 6, -6, 9, 9, 9});
    const std::string global =
        R"("core:datatype":"ri8","core:sample_rate":5,"core:num_channels":2,"core:offset":100,"core:trailing_bytes":3)";
    const std::string captures =
        R"({"core:sample_start":100,"core:header_bytes":2,"core:frequency":1e6,"core:datetime":"2026-01-02T00:00:00Z"},
           {"core:sample_start":102,"core:header_bytes":1,"core:frequency":1e6,"capture_details:acq_scale_factor":0.5},
           {"core:sample_start":104,"core:frequency":2e6,"capture_details:acq_scale_factor":0.25,
            "core:datetime":"2027-01-01T01:00:00.5+01:00"}])";
    const auto path = sigmf("c", global, captures.substr(0, captures.size() - 1), samples);
    for (const auto& input : {path, folder() + "c.sigmf-data", tar("c.sigmf", "c.sigmf-meta c.sigmf-data")}) {
        const auto reader = program::openInput(input, {});
        EXPECT_EQ(reader->facts().length, 6U) << input;
        const auto& recorded = reader->facts().recorded;
        EXPECT_EQ(program::formatDateTime(*recorded.at(3, 5)), "2026-01-02T00:00:00.600000Z") << "no time of its own";
        EXPECT_EQ(program::formatDateTime(*recorded.behind(4, 5)), "2026-01-02T00:00:00.800000Z");
        EXPECT_EQ(program::formatDateTime(*recorded.behind(5, 5)), "2027-01-01T00:00:00.700000Z");
        EXPECT_EQ(nextFrame(*reader, 100), (Values{1 / 128., 2 / 128., 1.5, 2, -1 / 128., -2 / 128., -1.5, -2}))
            << "the frame ends with its centre frequency";
        EXPECT_EQ(reader->facts().centerFrequency, 1e6);
        EXPECT_EQ(nextFrame(*reader, 100), (Values{1.25, 1.5, -1.25, -1.5}));
        EXPECT_EQ(reader->facts().centerFrequency, 2e6);
        EXPECT_EQ(nextFrame(*reader, 100), Values{});
        expectNotes(*reader, {});
    }
    // Around and around: no frame mixes two frequencies, and none is lost.
    const auto reader = program::openInput(path, {.seek = "0.6", .loop = true});
    EXPECT_EQ(program::formatDateTime(*reader->facts().recorded.at(3 + 3 * 7, 5)), "2026-01-02T00:00:00.600000Z");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(nextFrame(*reader, 3), (Values{2, -2}));
        EXPECT_EQ(reader->facts().centerFrequency, 1e6);
        EXPECT_EQ(nextFrame(*reader, 3), (Values{1.25, 1.5, -1.25, -1.5}));
        EXPECT_EQ(reader->facts().centerFrequency, 2e6);
    }
}

TEST_F(Recording, BadMetadataAreRefusedByField) {
    const std::string good = R"("core:datatype":"ci8","core:sample_rate":5)";
    const std::tuple<std::string, std::string, std::string> rows[] = {
        {R"("core:sample_rate":5)", "", "global.core:datatype: is missing"},
        {R"("core:datatype":"cs8","core:sample_rate":5)", "", "`cs8` is no datatype"},
        {R"("core:datatype":"i8","core:sample_rate":5)", "", "`i8` is no datatype"},
        {R"("core:datatype":7)", "", "global.core:datatype: is no text"},
        {R"("core:datatype":"ci8")", "", "core:sample_rate: is missing; --rate HZ"},
        {R"("core:datatype":"ci8","core:sample_rate":-1)", "", "core:sample_rate: is not above 0"},
        {good + R"(,"core:num_channels":0)", "", "core:num_channels: is not within 1 to 1024"},
        {good + R"(,"core:num_channels":1.5)", "", "core:num_channels: is no whole number"},
        {good + R"(,"core:dataset":"../x")", "", "core:dataset: `../x` is not the name of a file alone"},
        {good + R"(,"core:dataset":"none.bin")", "",
         "bad.sigmf-meta: global.core:dataset: " + folder() + "none.bin: No such file"},
        {good + R"(,"core:metadata_only":true)", "", "the recording has no samples"},
        {good, "7", "captures[0]: is no object"},
        {good, R"({"core:sample_start":-1})", "captures[0].core:sample_start: is no whole number"},
        {good, R"({"core:sample_start":9},{"core:sample_start":8})", "captures[1].core:sample_start: lies before"},
        {good + R"(,"core:offset":5)", R"({"core:sample_start":4})", "lies before the first sample"},
        {good, R"({},{"core:frequency":"1 MHz"})", "captures[1].core:frequency: is no number"},
        {good, R"({"capture_details:acq_scale_factor":0})", "acq_scale_factor: is 0"},
        {good, R"({"core:header_bytes":9007199254740992},{"core:header_bytes":9})", "larger than any file"},
        {good + R"(,"core:trailing_bytes":5)", "", "global.core:trailing_bytes: 5 bytes, and the samples have 4"},
        {good, R"({"core:header_bytes":5})", "captures[0].core:header_bytes: 5 bytes"},
        {good + "]", "", "no JSON: line 1, column"},
        {good + R"(,"core:x":4e8000)", "", "number overflow parsing '4e8000'"},
    };
    for (const auto& [global, captures, expected] : rows) {
        expectError(sigmf("bad", global, captures, "1234"), {}, expected);
    }
    expectError(write("x.sigmf-meta", "[]"), {}, "metadata: is no object");
    expectError(write("x.sigmf-collection", R"({"collection":{}})"), {}, "a collection");
    expectError(write("x.sigmf", std::string(512, 'x')), {}, "no tar archive");
    expectError(folder() + "no.sigmf-data", {}, "no.sigmf-meta: No such file");
    // A capture behind the last sample.
    const auto reader = program::openInput(sigmf("short", good, R"({},{"core:sample_start":50})", "1234"), {});
    EXPECT_EQ(firstRow(*reader).size(), 2U);
    expectNotes(*reader, {"cut short"});
}

TEST_F(Recording, ArchivesHaveLongNamesAndOneRecording) {
    const std::string global = R"("core:datatype":"ri8","core:sample_rate":5)";
    const std::string name(120, 'n');
    sigmf(name, global, "", "abc");
    const auto both = name + ".sigmf-meta " + name + ".sigmf-data ";
    sigmf("holes", global, "", "");
    for (const std::string format : {"pax", "gnu"}) {
        const auto archive = tar(format + ".sigmf", "--format=" + format + ' ' + both);
        EXPECT_EQ(firstRow(*program::openInput(archive, {})).size(), 3U) << format;
        std::filesystem::resize_file(folder() + "holes.sigmf-data", 1 << 20);
        expectError(tar("holes.sigmf", "--sparse --format=" + format + " holes.sigmf-meta holes.sigmf-data"), {},
                    "`holes.sigmf-data` without its holes");
    }
    sigmf("other", global, "", "abcd");
    expectError(tar("two.sigmf", "other.sigmf-meta " + both + "other.sigmf-data"), {},
                "holds several recordings, other.sigmf-meta and nnn");
}

TEST_F(Recording, DoubtfulMetadataAreTold) {
    // Four samples, of which the capture tells the last two, behind a header; a time that is none, and an extension.
    const auto path = sigmf("doubt", R"("core:datatype":"ri8","core:sample_rate":5,"core:extensions":[
        {"name":"capture_details","optional":false},{"name":"other","optional":false},{"name":"x","optional":true}])",
                            R"({"core:sample_start":2,"core:header_bytes":2,"core:datetime":"noon"})", "12345678");
    const auto reader = program::openInput(path, {});
    EXPECT_EQ(firstRow(*reader), (Values{49 / 128., 50 / 128., 53 / 128., 54 / 128., 55 / 128., 56 / 128.}));
    EXPECT_FALSE(reader->facts().recorded.at(0, 5));
    expectNotes(*reader, {"`other`, which", "captures[0].core:datetime: `noon` is no"});
}

TEST_F(Recording, ChecksumIsComparedOnRequest) {
    // The sum of "abc" is the example of FIPS 180-4.
    const std::string sum =
        "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
        "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f";
    const std::string global = R"("core:datatype":"ri8","core:sample_rate":5)";
    const InputOptions verify{.verify = true};
    const auto path = sigmf("sum", global + R"(,"core:sha512":")" + sum + '"', "", "abc");
    EXPECT_EQ(program::openInput(path, verify)->facts().checksum, "SHA-512 agrees");
    EXPECT_EQ(program::openInput(path, {})->facts().checksum, "SHA-512 not compared; --verify does");
    EXPECT_EQ(firstRow(*program::openInput(path, verify)).size(), 3U);
    const auto archive = tar("s.sigmf", "sum.sigmf-meta sum.sigmf-data");
    EXPECT_EQ(program::openInput(archive, verify)->facts().checksum, "SHA-512 agrees");
    write("sum.sigmf-data", "abd");
    expectError(path, verify, "sum.sigmf-data: the samples are not those that were written");
    expectError(sigmf("no", global, "", "abc"), verify, "core:sha512: is missing");
}

TEST_F(Recording, TablesAreReadAsTheyComeAndTheirTimesGiveTheRate) {
    std::string rounded = "Time (ms);U;I\n";  // six digits of times at 44.1 kHz, a decimal comma
    for (int i = 0; i < 5000; ++i) {
        auto row = std::to_string(i / 44.1) + ';' + std::to_string(i) + ";0,5\r\n";
        row[row.find('.')] = ',';
        rounded += row;
    }
    // The first piece that is read ends between CR and LF.
    const auto longLines = '#' + std::string(65534, ' ') + "\r\n70000\r\n";
    const InputOptions at5{"", "5"};
    const std::tuple<std::string, InputOptions, double, int, Values> rows[] = {
        {"0,1\n0.5,2\n1.0,3\n", {}, 2, 1, {1, 2, 3}},
        {"0,1\n0.5,2\n1.0,3", at5, 5, 2, {0, 0.5, 1}},
        {"# made by hand\n\ntime,a,\"b, c\"\n0,1,4\n3e-6,,5\n6e-6,3,6\n", {}, 1 / 3e-6, 2, {1, nan, 3}},
        {"\xEF\xBB\xBFt [us]\ty\n0\t1\n1\tinf\n", {}, 1e6, 1, {1, infinity}},
        {"1 2\n 3 \t4\n", at5, 5, 2, {1, 3}},
        {"Model,X1\nSample Interval,4e-9\nTIME,CH1\n-4e-09,1\n0,2\n4e-09,3\n", {}, 250e6, 1, {1, 2, 3}},
        {"volts\n1\n+2\n", at5, 5, 1, {1, 2}},
        {rounded, {}, 44100, 2, {0, 1, 2, 3}},
        // What oscilloscopes write: units below the names, separators at the ends of rows, titles over two lines.
        {"Time,Channel A\n(ms),(V)\n\n0,1\n2,2\n", {}, 500, 1, {1, 2}},
        {"t (ms),v\n0,1,\n2,2,\n4,3\n", {}, 500, 1, {1, 2, 3}},
        {"t (ms),v,\n0,1,\n2,2,\n", {}, 500, 1, {1, 2}},
        {"\"time\n(ms)\",v\n0,1\n2,2\n", {}, 500, 1, {1, 2}},
        {"t (ms)\n0,1\n2,2\n", {}, 500, 1, {1, 2}},
        {"v\n1e400\n-1e400\n1e-400\n", at5, 5, 1, {infinity, -infinity, 0}},
        {"# old\r\rt,v\r0,1\r0.5,2\r1,3", {}, 2, 1, {1, 2, 3}},
        {longLines, at5, 5, 1, {70000}},
    };
    for (const auto& [text, options, rate, channels, values] : rows) {
        const auto reader = program::openInput(write("table.csv", text), options);
        EXPECT_DOUBLE_EQ(reader->facts().sampleRate, rate) << text.substr(0, 50);
        EXPECT_EQ(reader->facts().channels, channels) << text.substr(0, 50);
        EXPECT_TRUE(areSame(firstRow(*reader, values.size()), values)) << text.substr(0, 50);
    }
    const InputOptions pairs{.rate = "5", .scale = "2", .isIq = true};
    const auto reader = program::openInput(write("iq.csv", "I,Q\n1,2\n3,4\n"), pairs);
    EXPECT_EQ(nextFrame(*reader, 9), (Values{2, 6, 4, 8}));
    EXPECT_TRUE(reader->facts().isComplex);
}

TEST_F(Recording, BadTablesAreRefusedByLine) {
    const InputOptions at5{"", "5"};
    std::string gap = "t,y\n";  // one step is missing behind the rows from which the rate follows
    for (int i = 0; i < 5000; ++i) {
        gap += std::to_string(i + (i > 4500 ? 1 : 0)) + ",1\n";
    }
    const std::tuple<std::string, InputOptions, const char*> rows[] = {
        {"", at5, "holds no row of numbers"},
        {"a,b\nc,d\n", at5, "holds no row of numbers"},
        {"1,2\n3\n", at5, "line 2: has 1 cells, and the rows above have 2"},
        {"1,2\n3,x\n", at5, "line 2: expected numbers, found `3,x`"},
        {"1,2\n\n3,4,5\n", at5, "line 3: has 3 cells"},
        {"1,2\r\r3,4,5\r", at5, "line 3: has 3 cells"},
        {"1\n2\n", {}, "line 1: one column, the times, and no values"},
        {"freq,y\n1,2\n2,3\n", {}, "`freq`, is not called time"},
        {"t (furlongs),y\n1,2\n2,3\n", {}, "not called time in a known unit"},
        {"t,y\n0,1\n1,1\n3,1\n", {}, "don't rise by equal steps: row 3"},
        {"t,y\n0,1\n1,1\n5,1\n", {}, "don't rise by equal steps: row 3"},
        {"t,y\n1,1\n", {}, "one row tells no rate"},
        {gap, {}, "line 4503: the time 4502 does not follow"},
        {std::string("1,2\n\0,3\n", 8), at5, "line 2: holds bytes that are no text"},
        {std::string(3 << 20, '1'), at5, "line 1: is longer than"},
        {"\"t (ms),v\n0,1\n", {}, "quotation mark above is not closed"},
        {std::string("\xFF\xFE\x31\0", 4), at5, "UTF-16"},
    };
    for (const auto& [text, options, expected] : rows) {
        expectError(write("bad.csv", text), options, expected);
    }
    // The rows in front of a bad one are read; it is told when they have been.
    const auto bad = program::openInput(write("bad.csv", "1\n2\n3\nx\n"), at5);
    EXPECT_EQ(nextFrame(*bad, 10), (Values{1, 2, 3}));
    EXPECT_THROW(nextFrame(*bad, 10), program::UsageError);
    const auto cut = program::openInput(write("cut.csv", "1,2\n3,4\n5"), at5);
    EXPECT_EQ(firstRow(*cut).size(), 2U);
    expectNotes(*cut, {"line 3: is cut short"});
}

/// A sparse sound file of 5 GiB: 16-bit samples, all 0 but the last two.
constexpr std::uint64_t manyBytes = std::uint64_t{5} << 30U;

void writeSparse(const std::string& path, const std::string& header) {
    std::ofstream(path, std::ios::binary) << header;
    std::filesystem::resize_file(path, header.size() + manyBytes);
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(-4, std::ios::end);
    file << bytesOf<std::int16_t>({16384, -16384});
}

TEST_F(Recording, SoundFilesAbove4GiBAreReadToTheirEnd) {
    const auto format =
        bytesOf<std::uint16_t>({1, 1}) + bytesOf<std::uint32_t>({48000, 96000}) + bytesOf<std::uint16_t>({2, 16});
    const auto all = bytesOf<std::uint32_t>({0xFFFFFFFF});
    writeSparse(folder() + "long.rf64", "RF64" + all + "WAVEds64" + bytesOf<std::uint32_t>({28}) +
                                            bytesOf<std::uint64_t>({manyBytes + 72, manyBytes, manyBytes / 2}) +
                                            bytesOf<std::uint32_t>({0}) + "fmt " + bytesOf<std::uint32_t>({16}) +
                                            format + "data" + all);
    const auto tail = bytesOf<std::uint8_t>({0xF3, 0xAC, 0xD3, 0x11, 0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A});
    writeSparse(folder() + "long.w64",
                "riff" + bytesOf<std::uint8_t>({0x2E, 0x91, 0xCF, 0x11, 0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1, 0, 0}) +
                    bytesOf<std::uint64_t>({manyBytes + 104}) + "wave" + tail + "fmt " + tail +
                    bytesOf<std::uint64_t>({24 + 16}) + format + "data" + tail +
                    bytesOf<std::uint64_t>({24 + manyBytes}));
    for (const auto* name : {"long.rf64", "long.w64"}) {
        InputOptions options;
        options.seek = std::to_string(static_cast<double>(manyBytes / 2 - 3) / 48000.0);
        const auto reader = program::openInput(folder() + name, options);
        EXPECT_EQ(reader->facts().length, 3U) << name;
        EXPECT_EQ(firstRow(*reader), (Values{0, 0.5, -0.5})) << name;
        expectNotes(*reader, {});
        std::filesystem::resize_file(folder() + name, 100000);
        expectNotes(*program::openInput(folder() + name, {}), {"cut short"});
    }
}

TEST_F(Recording, PartsOfEveryKindOfInput) {
    std::vector<std::int16_t> ramp(200);
    std::string table;
    for (std::size_t i = 0; i < 100; ++i) {
        ramp[2 * i] = static_cast<std::int16_t>(i);
        table += std::to_string(i) + '\n';
    }
    const auto wav = writeWav("ramp.wav", ramp, 2);
    const std::string bytes(reinterpret_cast<const char*>(ramp.data()), 400);
    const std::pair<std::string, InputOptions> inputs[] = {
        {wav, {}},
        {write("ramp.sc16", bytes), {"", "8k", "", ""}},
        {sigmf("ramp", R"("core:datatype":"ri16_le","core:sample_rate":8000,"core:num_channels":2)", "", bytes), {}},
        {write("ramp.csv", table), {"", "8k", "", "0.000030517578125"}},
    };
    for (const auto& [input, options] : inputs) {
        const auto whole = firstRow(*program::openInput(input, options));
        ASSERT_EQ(whole.size(), 100U) << input;
        EXPECT_EQ(whole[99], 99 / 32768.0) << input;
        auto cutOut = options;
        cutOut.seek = "5m";
        cutOut.duration = "2.5m";
        const Values expected = part(whole, 40, 20);
        EXPECT_EQ(firstRow(*program::openInput(input, cutOut)), expected) << input;
        cutOut.loop = true;
        EXPECT_EQ(firstRow(*program::openInput(input, cutOut), 60), joined({expected, expected, expected})) << input;
        cutOut.seek = "1";
        EXPECT_TRUE(errorOf(input, cutOut).starts_with("--seek")) << input;
    }
    const InputOptions iq{.center = "100M", .isIq = true};
    const auto reader = program::openInput(wav, iq);
    EXPECT_TRUE(reader->facts().isComplex);
    EXPECT_EQ(reader->facts().channels, 1);
    EXPECT_EQ(reader->facts().centerFrequency, 100e6);
    EXPECT_EQ(nextFrame(*reader, 2), (Values{0, 1 / 32768.0, 0, 0}));
    expectError(writeWav("one.wav", {1, 2, 3}, 1), iq, "makes no pair");
    const std::pair<InputOptions, const char*> refused[] = {
        {{.seek = "-1"}, "--seek: -1 is not a time"},       {{.duration = "x"}, "--duration: `x` is not a number"},
        {{.duration = "1u"}, "--duration: 1 us of"},        {{.seek = "inf"}, "--seek: inf is not a time"},
        {{.center = "inf"}, "--center: inf is not finite"},
    };
    for (const auto& [options, expected] : refused) {
        expectError(wav, options, expected);
    }
}

}  // namespace

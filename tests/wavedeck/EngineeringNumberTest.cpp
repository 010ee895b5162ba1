#include "EngineeringNumber.h"

#include "Test.h"

namespace {

TEST(EngineeringNumber, ReadsNumbersWithSuffixes) {
    const std::pair<const char*, double> rows[] = {
        {"48k", 48000.0},   {"2.5M", 2.5e6},   {"1G", 1e9},         {"3m", 0.003},  // rounded once: the literal
        {"22.7u", 22.7e-6}, {"5n", 5e-9},      {"-1e-3", -1e-3},    {"+7", 7.0},
        {"1e3k", 1e6},      {"Inf", infinity}, {"-inf", -infinity}, {".5", 0.5},
    };
    for (const auto& [text, value] : rows) {
        EXPECT_EQ(program::parseNumber(text), value) << text;
    }
    EXPECT_TRUE(std::isnan(*program::parseNumber("NaN")));
    for (const char* text : {"", "k", "1 k", "5kHz", "1K", "0x10", "--1", "+-1", "1,5", "infk", " 1", "1e"}) {
        EXPECT_FALSE(program::parseNumber(text)) << text;
    }
}

TEST(EngineeringNumber, WholeNumbersAreExact) {
    EXPECT_EQ(program::parseWholeNumber("64k"), 64000);
    EXPECT_EQ(program::parseWholeNumber("1.5k"), 1500);
    for (const char* text : {"1.5", "inf", "nan", "1e17", "3m"}) {
        EXPECT_FALSE(program::parseWholeNumber(text)) << text;
    }
}

TEST(EngineeringNumber, ShowsQuantitiesAsAnInstrumentDoes) {
    const std::tuple<double, const char*, const char*> rows[] = {
        {48000.0, "Hz", "48 kHz"},      {999.9999999, "Hz", "1 kHz"}, {0.0213333333, "s", "21.3333 ms"},
        {-0.001, "V", "-1 mV"},         {1e-12, "s", "0.001 ns"},     {0.0, "Hz", "0 Hz"},
        {12345.0, "dB", "12345 dB"},    {1.5e6, "", "1.5e+06"},       {1e15, "Hz", "1000 THz"},
        {std::nan(""), "Hz", "nan Hz"},
    };
    for (const auto& [value, unit, text] : rows) {
        EXPECT_EQ(program::formatQuantity(value, unit), text);
    }
}

}  // namespace

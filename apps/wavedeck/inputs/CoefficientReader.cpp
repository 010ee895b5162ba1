#include "CoefficientReader.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>

#include "EngineeringNumber.h"
#include "UsageError.h"

namespace program {
namespace {

std::string trimmed(const std::string& line) {
    const auto text = line.substr(0, line.find('#'));
    const auto begin = text.find_first_not_of(" \t\r");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

std::vector<double> readCoefficients(std::istream& lines, const std::string& name) {
    std::vector<double> coefficients;
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const auto text = trimmed(line);
        if (text.empty()) {
            continue;
        }
        const auto value = parseNumber(text);
        if (!value || !std::isfinite(*value)) {
            constexpr std::size_t longest = 40;
            throw UsageError(name + ": line " + std::to_string(number) + ": expected one coefficient, found `" +
                             text.substr(0, longest) + '`');
        }
        coefficients.push_back(*value);
    }
    return coefficients;
}

}  // namespace

CoefficientReader::CoefficientReader(const std::string& path, double rate) {
    facts_.name = path == "-" ? "standard input" : path;
    facts_.format = "filter coefficients, text";
    facts_.scale = "values as stored";
    facts_.sampleRate = rate;
    facts_.channels = 1;
    if (path == "-") {
        coefficients_ = readCoefficients(std::cin, facts_.name);
    } else {
        std::ifstream file(path);
        if (!file) {
            throw UsageError(path + ": " + std::strerror(errno));
        }
        coefficients_ = readCoefficients(file, facts_.name);
    }
    if (coefficients_.empty()) {
        throw UsageError(facts_.name + ": holds no coefficients");
    }
    facts_.length = coefficients_.size();
}

std::size_t CoefficientReader::read(std::size_t, std::vector<double>& frame) {
    frame.clear();
    if (!given_) {
        frame = coefficients_;
    }
    given_ = true;
    return frame.size();
}

bool CoefficientReader::seek(std::uint64_t sample) {
    given_ = sample > 0;
    return true;
}

}  // namespace program

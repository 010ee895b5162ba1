#include "TraceTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace program {
namespace {

void appendNumber(double value, std::string& text) {
    std::array<char, 32> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text.append(digits.data(), end);
}

/// A cell of text: in quotation marks where it holds what separates cells.
std::string textCell(const std::string& text) {
    if (text.find_first_of(",\"\n\r") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c == '\n' || c == '\r' ? ' ' : c);
    }
    return quoted + '"';
}

}  // namespace

void TraceTable::addAxis(const std::string& title, std::vector<double> values) {
    if (axis_ < columns.size() && columns[axis_].title == title && columns[axis_].values == values) {
        return;
    }
    axis_ = columns.size();
    columns.push_back({title, std::move(values)});
}

std::string TraceTable::csv() const {
    std::string text;
    for (auto remark : remarks) {
        std::replace_if(
            remark.begin(), remark.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
        text.append("# ").append(remark).append(1, '\n');
    }
    std::size_t rows = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        text.append(i > 0 ? 1 : 0, ',').append(textCell(columns[i].title));
        rows = std::max(rows, columns[i].values.size());
    }
    text += '\n';
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            text.append(i > 0 ? 1 : 0, ',');
            if (row < columns[i].values.size()) {
                appendNumber(columns[i].values[row], text);
            }
        }
        text += '\n';
    }
    return text;
}

}  // namespace program

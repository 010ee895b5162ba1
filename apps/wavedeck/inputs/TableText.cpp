#include "TableText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <system_error>

#include "UsageError.h"

namespace program {
namespace {

constexpr std::string_view blanks = " \t\r\n";  // of CR and LF the one that ends no lines

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string_view unquoted(std::string_view text) {
    text = trimmed(text);
    return text.size() > 1 && text.front() == '"' && text.back() == '"' ? trimmed(text.substr(1, text.size() - 2))
                                                                        : text;
}

}  // namespace

bool TableLines::fill() {
    constexpr std::size_t longest = std::size_t{1} << 20U;
    constexpr std::size_t step = 65536;
    if (held_.size() - begin_ > longest) {
        ++number_;
        fail("is longer than " + std::to_string(longest) + " bytes, so that this is no table");
    }
    held_.erase(0, begin_);
    begin_ = 0;
    const auto before = held_.size();
    held_.resize(before + step);
    const auto got = source_.readSome(reinterpret_cast<unsigned char*>(held_.data()) + before, step);
    held_.resize(before + got);
    if (before == 0 && source_.position() == got) {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        begin_ = held_.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
        if (held_.starts_with("\xFF\xFE") || held_.starts_with("\xFE\xFF")) {
            throw UsageError(name() + ": is text of two bytes a character (UTF-16); tables are read as UTF-8");
        }
    }
    return got > 0;
}

void TableLines::findLineBreak() {
    bool hasFeed = false;
    bool hasReturn = false;
    do {
        const auto text = std::string_view(held_).substr(begin_);
        const auto first = text.find('\r');
        hasFeed = text.find('\n') != std::string_view::npos;
        // At the end of what is there it may be half of CR LF.
        hasReturn = first != std::string_view::npos && text.find_first_not_of('\r', first) != std::string_view::npos;
    } while (!hasFeed && !hasReturn && fill());
    lineBreak_ = hasFeed || !hasReturn ? '\n' : '\r';
}

std::optional<std::string_view> TableLines::next() {
    if (lineBreak_ == '\0') {
        findLineBreak();
    }
    for (;;) {
        auto end = held_.find(lineBreak_, begin_);
        // What was searched already is searched again after a fill; lines are short.
        while (end == std::string::npos && fill()) {
            end = held_.find(lineBreak_, begin_);
        }
        isWhole_ = end != std::string::npos;
        end = std::min(end, held_.size());
        if (end == begin_ && !isWhole_) {
            return std::nullopt;
        }
        ++number_;
        const auto line = trimmed(std::string_view(held_).substr(begin_, end - begin_));
        begin_ = end + (isWhole_ ? 1 : 0);
        if (line.find('\0') != std::string_view::npos) {
            fail("holds bytes that are no text");
        }
        if (!line.empty() && line.front() != '#') {
            return std::string_view(held_).substr(static_cast<std::size_t>(line.data() - held_.data()), line.size());
        }
    }
}

bool TableLines::rewind() {
    held_.clear();
    begin_ = 0;
    number_ = 0;
    return isFile() && source_.seek(0);
}

void TableLines::fail(const std::string& what) const {
    throw UsageError(name() + ": line " + std::to_string(number_) + ": " + what);
}

TableSeparator findSeparator(std::string_view line) {
    for (const auto separator : {TableSeparator::Tab, TableSeparator::Semicolon, TableSeparator::Comma}) {
        if (line.find(static_cast<char>(separator)) != std::string_view::npos) {
            return separator;
        }
    }
    return TableSeparator::Blanks;
}

void splitCells(std::string_view line, TableSeparator separator, std::vector<std::string_view>& cells) {
    cells.clear();
    bool isQuoted = false;
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        const bool atEnd = i == line.size();
        if (!atEnd && line[i] == '"') {
            isQuoted = !isQuoted;
        }
        const bool separates =
            atEnd || (!isQuoted && (separator == TableSeparator::Blanks ? blanks.find(line[i]) != std::string_view::npos
                                                                        : line[i] == static_cast<char>(separator)));
        if (!separates) {
            continue;
        }
        const auto cell = unquoted(line.substr(begin, i - begin));
        begin = i + 1;
        if (separator != TableSeparator::Blanks || !cell.empty()) {
            cells.push_back(cell);
        }
    }
}

bool endsInQuotes(std::string_view line) {
    bool isInside = false;
    bool isQuoted = false;  // the cell under way
    bool atBegin = true;    // of a cell
    for (const char c : line) {
        if (c == '"' && (atBegin || isQuoted)) {
            isInside = !isInside;
            isQuoted = true;
        }
        const bool separates = !isInside && std::string_view(",;\t").find(c) != std::string_view::npos;
        atBegin = separates || (atBegin && blanks.find(c) != std::string_view::npos);
        isQuoted = isQuoted && !separates;
    }
    return isInside;
}

std::optional<double> readCell(std::string_view cell, TableSeparator separator) {
    if (cell.empty()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    std::array<char, 64> copy{};
    if (separator != TableSeparator::Comma && cell.size() <= copy.size() && cell.find(',') != std::string_view::npos) {
        std::replace_copy(cell.begin(), cell.end(), copy.begin(), ',', '.');
        cell = {copy.data(), cell.size()};
    }
    if (cell.front() == '+') {
        cell.remove_prefix(1);
    }
    double value = 0.0;
    const auto [rest, error] = std::from_chars(cell.data(), cell.data() + cell.size(), value);
    const bool isOutOfRange = error == std::errc::result_out_of_range;
    if (rest != cell.data() + cell.size() || (error != std::errc() && !isOutOfRange)) {
        return std::nullopt;
    }
    if (!isOutOfRange) {
        return value;
    }
    // Too large or too small for a double: infinite, or zero.
    const std::string text(cell);
    return std::strtod(text.c_str(), nullptr);
}

}  // namespace program

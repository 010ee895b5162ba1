#include "TableReader.h"

#include <algorithm>
#include <utility>

#include "EngineeringNumber.h"
#include "StopRequest.h"
#include "TableTitles.h"
#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

constexpr std::size_t mostChannels = 1024;

/// What a line begins with, for messages.
std::string beginOf(std::string_view text) {
    constexpr std::size_t longest = 40;
    return '`' + std::string(text.substr(0, longest)) + '`';
}

/// The cells of a line of titles, by what separates the numbers below it; nothing of an empty line.
std::vector<std::string> splitTitles(const std::string& line, TableSeparator separator) {
    std::vector<std::string_view> cells;
    splitCells(line, separator, cells);
    return line.empty() ? std::vector<std::string>() : std::vector<std::string>(cells.begin(), cells.end());
}

}  // namespace

TableReader::TableReader(const std::string& path, const Options& options) : options_(options), lines_(path) {
    const auto titles = findFirstRow();
    columns_ = values_.size();
    findTimes(titles);
    const auto channels = columns_ - (hasTimes_ ? 1 : 0);
    if (channels == 0 || channels > mostChannels) {
        lines_.fail(channels == 0 ? "one column, the times, and no values; --rate HZ takes a column without a title as "
                                    "values"
                                  : "has more than 1024 columns");
    }
    if (options.isIq && channels % 2 != 0) {
        throw UsageError(
            "--iq: " + lines_.name() + " has " + std::to_string(channels) +
            (channels == 1 ? " column of values, which makes no pair" : " columns of values, which make no pairs"));
    }
    facts_.name = lines_.name();
    facts_.format = "table, " + std::to_string(channels) + (channels == 1 ? " column" : " columns");
    if (titles.size() == columns_) {
        facts_.format += ": " + join(std::vector(titles.begin() + (hasTimes_ ? 1 : 0), titles.end()), ", ");
    }
    facts_.scale = "values as written";
    if (options.factor != 1.0) {
        facts_.scale += ", times " + formatQuantity(options.factor, "", 15);
    }
    facts_.channels = static_cast<int>(options.isIq ? channels / 2 : channels);
    facts_.isComplex = options.isIq;
    if (options.rate) {
        facts_.sampleRate = *options.rate;
        appendRow();
    } else {
        findRate();
    }
}

std::vector<std::string> TableReader::findFirstRow() {
    constexpr int mostLinesAbove = 100;
    std::string above;
    std::string twoAbove;
    for (int i = 0; i < mostLinesAbove; ++i) {
        const auto line = nextLineAbove();
        if (!line) {
            throw UsageError(lines_.name() + ": holds no row of numbers");
        }
        separator_ = findSeparator(*line);
        splitCells(*line, separator_, cells_);
        if (readCells()) {
            auto titles = splitTitles(above, separator_);
            hasEndSeparator_ = cells_.back().empty() && !titles.empty() &&
                               (titles.size() + 1 == cells_.size() || titles.back().empty());
            dropEndCell();
            return tableTitles(splitTitles(twoAbove, separator_), std::move(titles), cells_.size());
        }
        twoAbove.swap(above);
        above = *line;
    }
    throw UsageError(lines_.name() + ": no row of numbers in the first " + std::to_string(mostLinesAbove) +
                     " lines; line " + std::to_string(lines_.number()) + " begins " + beginOf(above));
}

std::optional<std::string_view> TableReader::nextLineAbove() {
    auto line = lines_.next();
    if (!line || !endsInQuotes(*line)) {
        return line;
    }
    constexpr int mostLines = 10;
    titleLine_ = *line;
    for (int i = 0; i < mostLines && endsInQuotes(titleLine_); ++i) {
        line = lines_.next();
        titleLine_.append(1, ' ').append(line.value_or(""));
    }
    if (endsInQuotes(titleLine_)) {
        lines_.fail("a quotation mark above is not closed");
    }
    return titleLine_;
}

void TableReader::dropEndCell() {
    if (hasEndSeparator_ && cells_.back().empty() && (columns_ == 0 || cells_.size() == columns_ + 1)) {
        cells_.pop_back();
        values_.resize(std::min(values_.size(), cells_.size()));
    }
}

bool TableReader::readCells() {
    values_.clear();
    bool anyNumber = false;
    for (const auto cell : cells_) {
        const auto value = readCell(cell, separator_);
        if (!value) {
            return false;
        }
        anyNumber = anyNumber || !cell.empty();
        values_.push_back(*value);
    }
    return anyNumber;
}

void TableReader::findTimes(const std::vector<std::string>& titles) {
    if (titles.empty()) {
        hasTimes_ = !options_.rate;
        return;
    }
    const auto unit = TableTimes::findUnit(titles.front());
    hasTimes_ = unit.has_value();
    times_ = TableTimes(unit.value_or(1.0));
    if (!hasTimes_ && !options_.rate) {
        throw UsageError(lines_.name() + ": the first column, " + beginOf(titles.front()) +
                         ", is not called time in a known unit; --rate HZ gives the rate");
    }
}

bool TableReader::nextRow() {
    const auto line = lines_.next();
    if (!line) {
        return false;
    }
    splitCells(*line, separator_, cells_);
    dropEndCell();
    const bool isGood = cells_.size() == columns_ && readCells();
    if (!isGood && !lines_.isWhole()) {
        note(lines_.name() + ": line " + std::to_string(lines_.number()) + ": is cut short and is left out");
        return false;
    }
    if (cells_.size() != columns_) {
        lines_.fail("has " + std::to_string(cells_.size()) + " cells, and the rows above have " +
                    std::to_string(columns_));
    }
    if (!isGood) {
        lines_.fail("expected numbers, found " + beginOf(*line));
    }
    return true;
}

void TableReader::findRate() {
    // As many as show the rate to all its digits; of a pipe so few that the first picture comes soon.
    const std::size_t most = lines_.isFile() ? 4096 : 64;
    std::size_t rows = 0;
    bool isThere = true;
    while (isThere && rows < most) {
        times_.add(cells_.front(), values_.front());
        appendRow();
        ++rows;
        isThere = rows < most && nextRow();
    }
    const auto rate = times_.rate();
    if (!rate) {
        throw UsageError(lines_.name() + (rows < 2 ? ": one row tells no rate; --rate HZ gives it"
                                                   : ": the times in the first column don't rise by equal steps: row " +
                                                         std::to_string(times_.firstUneven() + 1) +
                                                         " of the numbers; --rate HZ takes the rows as they come"));
    }
    facts_.sampleRate = *rate;
}

void TableReader::appendRow() {
    for (auto i = static_cast<std::size_t>(hasTimes_ ? 1 : 0); i < values_.size(); ++i) {
        waiting_.push_back(values_[i] * options_.factor);
    }
}

bool TableReader::takeRow() {
    try {
        if (!fault_.empty()) {
            throw UsageError(fault_);
        }
        if (!nextRow()) {
            return false;
        }
        if (hasTimes_ && !options_.rate && !times_.follows(values_.front())) {
            lines_.fail("the time " + std::string(cells_.front()) +
                        " does not follow on that before it by one step; --rate HZ takes the rows as they come");
        }
        appendRow();
        return true;
    } catch (const UsageError& error) {
        if (waitingBegin_ == waiting_.size()) {
            throw;
        }
        fault_ = error.what();
        return false;
    }
}

std::size_t TableReader::read(std::size_t points, std::vector<double>& frame) {
    const auto rows = static_cast<std::size_t>(facts_.rows());
    while (waiting_.size() - waitingBegin_ < points * rows && !StopRequest::requested() && takeRow()) {
    }
    const auto n = std::min((waiting_.size() - waitingBegin_) / rows, points);
    separate(waiting_.data() + waitingBegin_, n, facts_, frame);
    waitingBegin_ += n * rows;
    if (waitingBegin_ == waiting_.size()) {
        waiting_.clear();
        waitingBegin_ = 0;
    }
    next_ += n;
    return n;
}

bool TableReader::seek(std::uint64_t sample) {
    if (sample < next_) {
        if (!lines_.rewind()) {
            return false;
        }
        findFirstRow();
        times_.forgetLast();
        times_.follows(values_.front());
        waiting_.clear();
        waitingBegin_ = 0;
        fault_.clear();
        appendRow();
        next_ = 0;
    }
    constexpr std::size_t step = 4096;
    std::vector<double> passed;
    while (next_ < sample &&
           read(static_cast<std::size_t>(std::min<std::uint64_t>(step, sample - next_)), passed) > 0) {
    }
    return true;
}

}  // namespace program

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SignalReader.h"
#include "TableText.h"
#include "TableTimes.h"

namespace program {

/// A table of numbers as text, a row each sample time: columns between commas, semicolons, tabs or blanks, with or
/// without titles. A first column that its title calls the time, or that has no title while no rate is given, holds the
/// times of the samples; all others are channels.
class TableReader final : public SignalReader {
public:
    struct Options {
        std::optional<double> rate;  ///< Hz; stands before what the times say
        bool isIq = false;           ///< two columns are the real and the imaginary part of a channel
        double factor = 1.0;         ///< multiplies every value
    };

    /// path  a file, or "-" for standard input. Throws UsageError that names the line that is no row of the table.
    TableReader(const std::string& path, const Options& options);

    std::size_t read(std::size_t points, std::vector<double>& frame) override;
    bool seek(std::uint64_t sample) override;

private:
    /// Passes over what stands above the numbers; returns the titles that stand right above them. Leaves the first row
    /// in cells_ and values_, and counts its columns.
    std::vector<std::string> findFirstRow();
    /// The next line above the numbers, or the first of them; a quoted cell may go over several lines.
    std::optional<std::string_view> nextLineAbove();
    /// Drops the empty cell behind a separator at the end of a row.
    void dropEndCell();
    /// Takes a row; false at the end, and before a row that is wrong while rows wait: that is told when they are taken.
    bool takeRow();
    /// Takes the next line apart into cells_ and values_; false at the end.
    bool nextRow();
    /// Whether the cells in hand are all numbers; fills values_.
    bool readCells();
    void findTimes(const std::vector<std::string>& titles);
    /// Reads the first rows, from which the rate follows.
    void findRate();
    void appendRow();

    // options
    Options options_;
    // derived
    TableSeparator separator_ = TableSeparator::Comma;
    std::size_t columns_ = 0;       ///< with that of the times
    bool hasEndSeparator_ = false;  ///< a separator stands behind the last cell of each row
    bool hasTimes_ = false;
    // state
    TableLines lines_;
    TableTimes times_;
    std::vector<double> waiting_;  ///< interleaved samples of rows that were read ahead
    std::size_t waitingBegin_ = 0;
    std::uint64_t next_ = 0;  ///< sample time
    std::string fault_;       ///< what is wrong with the row behind those that wait; empty: nothing
    // scratch
    std::string titleLine_;
    std::vector<std::string_view> cells_;
    std::vector<double> values_;
};

}  // namespace program

#pragma once

#include <optional>
#include <string>
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
    /// in cells_ and values_.
    std::vector<std::string> findFirstRow();
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
    std::size_t columns_ = 0;  ///< with that of the times
    bool hasTimes_ = false;
    // state
    TableLines lines_;
    TableTimes times_;
    std::vector<double> waiting_;  ///< interleaved samples of rows that were read ahead
    std::size_t waitingBegin_ = 0;
    std::uint64_t next_ = 0;  ///< sample time
    // scratch
    std::vector<std::string_view> cells_;
    std::vector<double> values_;
};

}  // namespace program

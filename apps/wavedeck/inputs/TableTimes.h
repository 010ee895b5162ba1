#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace program {

/// The times in a column of a table: which unit they have, and the rate that they stand for.
///
/// Written times are rounded, so that they stand for a range of rates: the digits tell how wide it is, and the rate (or
/// the period, where that is rounder) is the roundest number within.
class TableTimes {
public:
    /// Seconds of a column's unit, when its title names a time: "time", "t (ms)", "Time [us]", "seconds"; nothing when
    /// it names something else, or has a unit that is none of time.
    static std::optional<double> findUnit(std::string_view title);

    /// unit  s
    explicit TableTimes(double unit = 1.0) : unit_(unit) {}

    /// Takes account of one of the first rows; value is what the cell holds.
    void add(std::string_view cell, double value);

    /// The rate of the rows that were added, Hz; nothing when they don't rise by equal steps.
    std::optional<double> rate();

    /// Of rows that don't rise by equal steps the first, from 0, whose step is not that of the rows before it.
    std::size_t firstUneven() const;

    /// Whether a row follows on the one before it. Counts it as the one before the next.
    bool follows(double value);

    /// Forgets which row was the last one.
    void forgetLast() { last_.reset(); }

private:
    double resolution(double value) const;

    // options
    double unit_;
    // derived
    double step_ = 0.0;  ///< in the column's unit
    // state
    std::vector<double> first_;  ///< the first rows
    int mostDigits_ = 0;         ///< significant ones of a time
    int mostDecimals_ = 0;
    bool sameDecimals_ = true;
    std::optional<double> last_;
};

}  // namespace program

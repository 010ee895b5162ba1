#pragma once

#include <cstddef>
#include <vector>

#include "wavedeck/Visibility.h"

namespace wavedeck::driver {

/// A ring of the newest points of parallel rows: times and channels of one signal. Rows are laid out as blocks only
/// when somebody asks for them.
class WAVEDECK_API SampleHistory {
public:
    /// Empties the ring and gives it `rows` rows of at most `capacity` points.
    void configure(std::size_t rows, std::size_t capacity);
    /// Makes room for more points and keeps those that are there.
    void grow(std::size_t capacity);
    void clear();

    /// Adds n points a row: block is [rows][n], row after row. Of more than fit the newest stay.
    void append(const double* block, std::size_t n);
    /// As append() for rows whose first is times: a stream that has gone back overwrites what lies ahead of it.
    void appendTimed(const double* block, std::size_t n);
    /// Forgets the newest n points.
    void dropNewest(std::size_t n);
    /// Forgets the points whose time, row 0, is above `time`, and tells how many. Times rise.
    std::size_t dropNewerThan(double time);
    /// The same, and a point at that time.
    std::size_t dropFrom(double time);

    /// Writes the points as blocks, row after row, oldest first: [rows][size()].
    void layOut(std::vector<double>& blocks) const;

    std::size_t rows() const { return rows_; }
    std::size_t size() const { return size_; }
    std::size_t capacity() const { return capacity_; }
    /// Value of a row, counted from the oldest point.
    double at(std::size_t row, std::size_t point) const { return values_[row * capacity_ + position(point)]; }

private:
    std::size_t position(std::size_t point) const {
        const std::size_t sum = begin_ + point;
        return sum < capacity_ ? sum : sum - capacity_;
    }

    // options
    std::size_t rows_ = 0;
    std::size_t capacity_ = 0;

    // state
    std::vector<double> values_;  ///< [rows][capacity]
    std::size_t begin_ = 0;       ///< position of the oldest point
    std::size_t size_ = 0;
};

}  // namespace wavedeck::driver

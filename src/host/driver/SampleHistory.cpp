#include "SampleHistory.h"

#include <algorithm>

namespace wavedeck::driver {

void SampleHistory::configure(std::size_t rows, std::size_t capacity) {
    const std::size_t points = std::max<std::size_t>(capacity, 1);
    values_ = std::vector<double>(rows * points, 0.0);  // first: if it fails, all stays as it was
    rows_ = rows;
    capacity_ = points;
    clear();
}

void SampleHistory::grow(std::size_t capacity) {
    if (capacity <= capacity_) {
        return;
    }
    std::vector<double> blocks;
    layOut(blocks);
    const std::size_t points = size_;
    configure(rows_, capacity);
    append(blocks.data(), points);
}

void SampleHistory::clear() {
    begin_ = 0;
    size_ = 0;
}

void SampleHistory::append(const double* block, std::size_t n) {
    const std::size_t skipped = n > capacity_ ? n - capacity_ : 0;
    const std::size_t added = n - skipped;
    if (added == 0) {
        return;
    }
    const std::size_t start = position(size_);
    const std::size_t first = std::min(added, capacity_ - start);
    for (std::size_t row = 0; row < rows_; ++row) {
        const double* source = block + row * n + skipped;
        double* ring = values_.data() + row * capacity_;
        std::copy(source, source + first, ring + start);
        std::copy(source + first, source + added, ring);
    }
    const std::size_t total = size_ + added;
    if (total > capacity_) {
        begin_ = position(total - capacity_);
    }
    size_ = std::min(total, capacity_);
}

void SampleHistory::appendTimed(const double* block, std::size_t n) {
    if (n > 0) {
        dropFrom(block[0]);
    }
    append(block, n);
}

void SampleHistory::dropNewest(std::size_t n) {
    size_ -= std::min(n, size_);
}

std::size_t SampleHistory::dropNewerThan(double time) {
    const std::size_t before = size_;
    while (size_ > 0 && at(0, size_ - 1) > time) {
        --size_;
    }
    return before - size_;
}

std::size_t SampleHistory::dropFrom(double time) {
    const std::size_t before = size_;
    while (size_ > 0 && at(0, size_ - 1) >= time) {
        --size_;
    }
    return before - size_;
}

void SampleHistory::layOut(std::vector<double>& blocks) const {
    blocks.resize(rows_ * size_);
    const std::size_t first = std::min(size_, capacity_ - begin_);
    double* target = blocks.data();
    for (std::size_t row = 0; row < rows_; ++row) {
        const double* ring = values_.data() + row * capacity_;
        target = std::copy(ring + begin_, ring + begin_ + first, target);
        target = std::copy(ring, ring + (size_ - first), target);
    }
}

}  // namespace wavedeck::driver

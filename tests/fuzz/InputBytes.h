#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace fuzz {

/// Takes choices, numbers and texts out of a fuzzer's input; behind its end all are zero.
class InputBytes {
public:
    InputBytes(const std::uint8_t* data, std::size_t size) : data_(data), end_(data + size) {}

    bool isEmpty() const { return data_ == end_; }

    std::uint8_t byte() { return data_ == end_ ? std::uint8_t{0} : *data_++; }

    /// 0 to count - 1.
    std::size_t below(std::size_t count) {
        const std::size_t value = count > 256 ? byte() * 256U + byte() : byte();
        return count == 0 ? 0 : value % count;
    }
    template <typename Choices>
    auto& oneOf(Choices& choices) {
        return choices[below(choices.size())];
    }
    bool flag() { return (byte() & 1U) != 0; }

    /// A number that is likely to matter, a small one, or any eight bytes.
    double number() {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        static constexpr std::array<double, 16> special{
            0.0,      1.0,       -1.0,  0.5,    -0.0,   1e-9,         1e9,  std::numeric_limits<double>::quiet_NaN(),
            infinity, -infinity, 1e300, -1e300, 5e-324, 2147483648.0, 1e-3, 100.0};
        const std::uint8_t kind = byte();
        if (kind < 96) {
            return special[kind % special.size()];
        }
        if (kind < 224) {
            return (byte() - 128) / (kind < 160 ? 1.0 : 16.0);
        }
        double value = 0.0;
        const std::size_t held = std::min(sizeof value, static_cast<std::size_t>(end_ - data_));
        std::memcpy(&value, data_, held);
        data_ += held;
        return value;
    }
    std::vector<double> numbers(std::size_t count) {
        std::vector<double> values(count);
        std::generate(values.begin(), values.end(), [this] { return number(); });
        return values;
    }

    std::string rest() {
        std::string text(reinterpret_cast<const char*>(data_), static_cast<std::size_t>(end_ - data_));
        data_ = end_;
        return text;
    }

private:
    const std::uint8_t* data_;
    const std::uint8_t* end_;
};

}  // namespace fuzz

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <random>

namespace soak {

/// Random choices that are the same on every machine for the same seed.
class RandomNumbers {
public:
    explicit RandomNumbers(std::uint64_t seed) : engine_(seed) {}

    /// 0 .. count - 1
    std::size_t below(std::size_t count) { return engine_() % count; }
    bool oneIn(std::size_t count) { return below(count) == 0; }
    /// 0 up to below 1
    double fraction() { return static_cast<double>(engine_() >> 11U) * 0x1p-53; }

    template <class Value>
    Value oneOf(std::initializer_list<Value> values) {
        return *std::next(values.begin(), static_cast<std::ptrdiff_t>(below(values.size())));
    }
    template <class Container>
    const auto& elementOf(const Container& container) {
        return container[below(std::size(container))];
    }

private:
    std::mt19937_64 engine_;
};

}  // namespace soak

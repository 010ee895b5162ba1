#pragma once

#include "Test.h"
#include "fftbridge.h"

namespace fft_test {

struct ApiFree {
    void operator()(double* buffer) const noexcept { fftbridge::fftwApi::free(buffer); }
};

/// Complex samples in aligned memory, `offset` doubles behind its start.
class Signal {
public:
    explicit Signal(std::size_t samples, std::size_t offset = 0)
        : store_(static_cast<double*>(fftbridge::fftwApi::malloc((2 * samples + offset) * sizeof(double)))),
          size_(2 * samples),
          data_(store_.get() + offset) {}
    double* data() { return data_; }
    void fillWithNoise(unsigned seed) {
        const testsupport::Values noise = testsupport::gaussianNoise(size_, seed);
        std::copy(noise.begin(), noise.end(), data_);
    }
    std::complex<double> at(std::size_t i) const { return {data_[2 * i], data_[2 * i + 1]}; }
    testsupport::Values copy() const { return {data_, data_ + size_}; }

private:
    std::unique_ptr<double, ApiFree> store_;
    std::size_t size_;
    double* data_;
};

/// Largest error of `out` over its rms, against the sum that defines the transform, in long double.
inline double relativeError(const Signal& in, const Signal& out, std::size_t length, std::size_t howMany, int sign) {
    using Wide = std::complex<long double>;
    long double worst = 0;
    long double power = 0;
    for (std::size_t c = 0; c < howMany; ++c) {
        for (std::size_t k = 0; k < length; ++k) {
            Wide sum = 0;
            for (std::size_t n = 0; n < length; ++n) {
                const auto turns = static_cast<long double>(k * n % length) / static_cast<long double>(length);
                sum += Wide(in.at(c * length + n)) *
                       std::polar(1.0L, static_cast<long double>(2 * sign) * std::numbers::pi_v<long double> * turns);
            }
            worst = std::max(worst, std::abs(Wide(out.at(c * length + k)) - sum));
            power += std::norm(sum);
        }
    }
    return static_cast<double>(worst / std::sqrt(power / static_cast<long double>(length * howMany)));
}

}  // namespace fft_test

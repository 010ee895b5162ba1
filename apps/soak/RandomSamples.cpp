#include "RandomSamples.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace soak {

void fillSamples(RandomNumbers& random, std::span<double> values) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::size_t form = random.below(6);
    const double scale = random.oneOf({1.0, 1.0, 1.0, 1e-12, 1e300});
    const double period = random.oneOf({2.0, 7.0, 50.0, 333.0});
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double phase = std::fmod(static_cast<double>(i), period) / period;
        switch (form) {
            case 0:
                values[i] = random.fraction() - 0.5;
                break;
            case 1:
                values[i] = (phase < 0.5 ? 0.0 : 1.0) + 0.01 * random.fraction();
                break;
            case 2:
                values[i] = std::sin(6.283185307179586 * phase);
                break;
            case 3:
                values[i] = 1.0;
                break;
            case 4:  // numbers as a head or an axis has them
                values[i] = 0.01 * static_cast<double>(i);
                break;
            default:
                values[i] = random.oneOf({0.0, -0.0, 1.0, -1.0, 5e-324, 1.7e308, -1.7e308, infinity, -infinity,
                                          std::numeric_limits<double>::quiet_NaN()});
        }
        values[i] *= scale;
    }
}

std::vector<std::vector<double>> randomFrame(RandomNumbers& random, const std::vector<int>& channels) {
    std::vector<std::vector<double>> frame;
    for (const int count : channels) {
        const std::size_t samples = random.oneOf<std::size_t>({0, 1, 2, 7, 64, 300, 1024, random.below(2000)});
        frame.emplace_back(static_cast<std::size_t>(count) * samples);
        for (std::size_t begin = 0; begin < frame.back().size(); begin += samples) {
            fillSamples(random, std::span(frame.back()).subspan(begin, samples));
        }
    }
    return frame;
}

std::vector<std::vector<double>> randomBuffers(RandomNumbers& random, std::size_t signals) {
    std::vector<std::vector<double>> buffers(signals);
    for (std::vector<double>& buffer : buffers) {
        buffer.resize(random.oneIn(4) ? 0 : random.below(700));
        fillSamples(random, buffer);
    }
    return buffers;
}

}  // namespace soak

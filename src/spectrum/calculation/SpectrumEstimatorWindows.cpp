#include <algorithm>
#include <array>
#include <boost/math/special_functions/bessel.hpp>
#include <cmath>
#include <numbers>

#include "SpectrumEstimator.h"

namespace dspwavedecks {

namespace {

/// Alternating sum of cosines  a[0] - a[1] cos theta + a[2] cos 2 theta - ...,  computed up to the middle and mirrored.
template <std::size_t Terms>
void cosineWindow(std::vector<double>& w, std::size_t n, const std::array<double, Terms>& a) {
    w.resize(n);
    if (n == 1) {
        w[0] = 1.0;
        return;
    }
    for (std::size_t k = 0; k < n / 2 + 1 && k < n; ++k) {
        const double theta = 2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(n);
        double value = a[0];
        double sign = -1.0;
        for (std::size_t m = 1; m < Terms; ++m) {
            value += sign * a[m] * std::cos(static_cast<double>(m) * theta);
            sign = -sign;
        }
        w[k] = value;
        if (k > 0) {
            w[n - k] = value;
        }
    }
}

double kaiserShape(double attenuation) {
    if (attenuation > 50.0) {
        return 0.1102 * (attenuation - 8.7);
    }
    if (attenuation >= 21.0) {
        return 0.5842 * std::pow(attenuation - 21.0, 0.4) + 0.07886 * (attenuation - 21.0);
    }
    return 0.0;
}

/// The part of a Chebyshev window's series that hangs on the position j, without the leading term g.
double chebyshevTail(std::size_t j, std::size_t n, double g, const std::vector<double>& c) {
    double sum = 0.0;
    double p = static_cast<double>(j) * (static_cast<double>(n) - static_cast<double>(j) - 1.0);
    double term = g;
    double q = 2.0 - static_cast<double>(n);
    for (std::size_t i = 0; i + 2 <= j; ++i) {
        p += q;
        term = term * p * c[i];
        const double before = sum;
        sum += term;
        if (sum == before) {
            break;
        }
        q += 2.0;
    }
    return sum;
}

}  // namespace

void SpectrumEstimator::hann(std::vector<double>& w, const std::size_t& n) {
    cosineWindow(w, n, std::array{0.5, 0.5});
}

void SpectrumEstimator::hamming(std::vector<double>& w, const std::size_t& n) {
    cosineWindow(w, n, std::array{0.54, 0.46});
}

void SpectrumEstimator::blackmanharris(std::vector<double>& w, const std::size_t& n) {
    cosineWindow(w, n, std::array{0.35875, 0.48829, 0.14128, 0.01168});
}

void SpectrumEstimator::flattop(std::vector<double>& w, const std::size_t& n) {
    cosineWindow(w, n, std::array{0.21557895, 0.41663158, 0.277263158, 0.083578947, 0.006947368});
}

void SpectrumEstimator::chebyshev(std::vector<double>& w, const std::size_t& n, const double& attenuation) {
    w.resize(n, 1.0);
    if (n < 3) {
        if (n == 1) {
            w[0] = 1.0;
        }
        return;
    }
    const std::size_t even = n + n % 2;
    const double ripple = std::pow(10.0, attenuation / 20.0);
    const double t = std::log(ripple + std::sqrt(ripple * ripple - 1.0)) / static_cast<double>(n - 1);
    const double g = std::tanh(t) * std::tanh(t);
    std::vector<double> c(even / 2 - 2);
    for (std::size_t i = 0; i < c.size(); ++i) {
        c[i] = g / static_cast<double>((i + 1) * (i + 2));
    }
    w[0] = w[n - 1] = 1.0 / static_cast<double>(n - 1);
    double largest = w[0];
    for (std::size_t j = 1; j < std::max<std::size_t>(even / 2, 2); ++j) {
        w[j] = w[n - 1 - j] = g + chebyshevTail(j, n, g, c);
        largest = std::max(largest, w[j]);
    }
    for (double& value : w) {
        value /= largest;
    }
}

void SpectrumEstimator::kaiser(std::vector<double>& w, const std::size_t& n, const double& attenuation) {
    w.resize(n);
    if (n < 2) {
        std::fill(w.begin(), w.end(), 1.0);
        return;
    }
    const double beta = kaiserShape(attenuation);
    const double peak = boost::math::cyl_bessel_i(0, beta);
    const double width = static_cast<double>(n - 1) * static_cast<double>(n - 1);
    for (std::size_t k = 0; k < (n + 1) / 2; ++k) {
        const double twiceDistance = static_cast<double>(n - 1 - 2 * k);
        const double argument = beta * std::sqrt(1.0 - twiceDistance * twiceDistance / width);
        w[k] = w[n - 1 - k] = std::abs(boost::math::cyl_bessel_i(0, argument) / peak);
    }
}

void SpectrumEstimator::computeWindowData(const std::size_t& n) {
    const WindowKey key{isFilterbankMode() ? Window::rectangular : window, n, sidelobeAttenuation};
    if (key.window == Window::custom) {
        windowData = customWindow;
        builtWindow.reset();
        return;
    }
    if (builtWindow == key && windowData.size() == n) {
        return;
    }
    windowData.resize(n, 1.0);
    switch (key.window) {
        case Window::blackmanHarris:
            blackmanharris(windowData, n);
            break;
        case Window::chebyshev:
            chebyshev(windowData, n, sidelobeAttenuation);
            break;
        case Window::flatTop:
            flattop(windowData, n);
            break;
        case Window::hamming:
            hamming(windowData, n);
            break;
        case Window::hann:
            hann(windowData, n);
            break;
        case Window::kaiser:
            kaiser(windowData, n, sidelobeAttenuation);
            break;
        default:
            std::fill(windowData.begin(), windowData.end(), 1.0);
            break;
    }
    builtWindow = key;
}

void SpectrumEstimator::computeENBW(const std::size_t& n) {
    computeWindowData(n);
    enbw = 1.0;
    if (isRectangularWindow() || isFilterbankMode() || n < 2) {
        return;
    }
    // A custom window counts with n samples, zeros beyond its end; the sum of a longer one runs over all of it.
    double squares = 0.0;
    for (std::size_t k = 0; k < std::min(n, windowData.size()); ++k) {
        squares += windowData[k] * windowData[k];
    }
    double sum = 0.0;
    for (const double value : windowData) {
        sum += value;
    }
    enbw = static_cast<double>(n) * squares / (sum * sum);
}

void SpectrumEstimator::computeWindowPower() {
    windowPower = 0.0;
    if (isRectangularWindow() || isFilterbankMode()) {
        windowPower = static_cast<double>(windowData.size());
        return;
    }
    for (const double value : windowData) {
        windowPower += value * value;
    }
}

}  // namespace dspwavedecks

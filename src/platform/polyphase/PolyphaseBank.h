#pragma once

#include <cstddef>
#include <cstdint>

/// Polyphase analysis: the FIR part of a bank of `numBands` filters that share one lowpass prototype.
///
/// A segment of samples is dealt out over the bands, one sample each. With x_g[k] sample k of segment g and H[t][k] tap
/// t of the prototype's branch that meets sample k,
///   y_g[k] = sum over t = 0 .. numTaps - 1 of H[t][k] * x_{g-t}[k],
/// and the input of the transform for segment g is y_g[0], y_{g-1}[1], y_{g-1}[2], ..., y_{g-1}[numBands - 1]: the
/// commutator begins with branch 0 and goes on downward from the last, so that band 0 alone is complete when a segment
/// begins. A Fourier transform of that gives one output of each band.
///
/// Segments shorter than the bank leave the bands behind them as they are, without a shift of their past, and count as
/// 0 there; in longer ones the commutator comes round again, and all that a band gives after its first turn is added
/// up.
///
/// The stores are the caller's, plain arrays of doubles in an order of their own (64-byte alignment gives the best
/// speed, and sizes are multiples of 8 doubles). A delay store of zeros is an empty past.
namespace dspwavedecks::polyphase {

/// What a sample is made of: one double, or two, the real and the imaginary part in turn.
enum class SampleKind : std::uint8_t { real = 1, complex = 2 };

/// Doubles in a store of the taps.
std::size_t tapStoreSize(std::size_t numBands, std::size_t numTaps);

/// Puts a prototype into the order of the kernels.
/// branches  [numBands * numTaps] the taps of branch 0, of branch 1, and so on
/// tapStore  [tapStoreSize(numBands, numTaps)]
void arrangeTaps(const double* branches, std::size_t numBands, std::size_t numTaps, double* tapStore);

/// Doubles in a delay store, which holds the past of one channel.
std::size_t delayStoreSize(std::size_t numBands, std::size_t numTaps, SampleKind kind);

/// A bank whose taps are arranged; it refers to `tapStore` and owns nothing.
struct Bank {
    std::size_t numBands{};
    std::size_t numTaps{};
    const double* tapStore{};
};

/// Filters consecutive segments of one channel and writes one transform's input for each.
/// delayStore   [delayStoreSize], the past, brought up to date
/// samples      [numSegments * segmentLength], one double each or two, as `kind` says
/// fftInput     rows of 2 * numBands doubles, complex samples; the row of segment g begins at g * rowStride
/// rowStride    in doubles, at least 2 * numBands
/// How segments are split into calls makes no difference but that of rounding. Speed does differ: eight segments in one
/// call take 0.6 of the time of eight calls. Allocates nothing.
/// Against the exact sums the error is at most numTaps + 1 units of 2^-53 of sum |H * x|.
void analyze(const Bank& bank, SampleKind kind, double* delayStore, const double* samples, std::size_t segmentLength,
             std::size_t numSegments, double* fftInput, std::size_t rowStride);

/// The same for one segment of real samples, with a row of `numBands` real values.
void analyzeToReal(const Bank& bank, double* delayStore, const double* samples, std::size_t segmentLength, double* row);

}  // namespace dspwavedecks::polyphase

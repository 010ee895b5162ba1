#include "PolyphaseKernels.h"

#include <cassert>

#include "PolyphaseBank.h"

namespace polyphase = dspwavedecks::polyphase;

void processHalide_PolyphaseAnalysisCRD(const std::complex<double>* samples, const double* taps,
                                        std::complex<double>* delayLines, std::complex<double>*,
                                        std::complex<double>* lowerSums, std::size_t numSamples,
                                        std::size_t numTapsPerBand, [[maybe_unused]] std::size_t numChannels,
                                        std::size_t numBands, [[maybe_unused]] std::size_t decimation,
                                        [[maybe_unused]] std::size_t inputStride,
                                        [[maybe_unused]] std::size_t outputStride, [[maybe_unused]] const int* phase,
                                        [[maybe_unused]] const int* increment) {
    assert(numChannels == 1 && decimation == numBands && inputStride == 1 && outputStride == 1);
    assert(*phase == 1 && *increment == 1);
    polyphase::analyze({numBands, numTapsPerBand, taps}, polyphase::SampleKind::complex,
                       reinterpret_cast<double*>(delayLines), reinterpret_cast<const double*>(samples), numSamples, 1,
                       reinterpret_cast<double*>(lowerSums), 2 * numBands);
}

void processHalide_PolyphaseAnalysisRRD(const double* samples, const double* taps, double* delayLines, double*,
                                        double* lowerSums, std::size_t numSamples, std::size_t numTapsPerBand,
                                        [[maybe_unused]] std::size_t numChannels, std::size_t numBands,
                                        [[maybe_unused]] std::size_t decimation,
                                        [[maybe_unused]] std::size_t inputStride,
                                        [[maybe_unused]] std::size_t outputStride, [[maybe_unused]] const int* phase,
                                        [[maybe_unused]] const int* increment) {
    assert(numChannels == 1 && decimation == numBands && inputStride == 1 && outputStride == 1);
    assert(*phase == 1 && *increment == 1);
    polyphase::analyzeToReal({numBands, numTapsPerBand, taps}, delayLines, samples, numSamples, lowerSums);
}

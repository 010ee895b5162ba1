#pragma once

#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "AlignedVector.h"
#include "PolyphaseBank.h"
#include "SampleVector.h"
#include "SpectrumBuffer.h"
#include "SpectrumEstimatorEnum.h"
#include "SpectrumTransform.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace dspwavedecks {

/// What a SpectrumEstimator remembers from frame to frame, and its scratch.
struct SpectrumEstimatorState {
    /// What a window was built from.
    struct WindowKey {
        SpectrumEstimatorEnum::Window window;
        std::size_t length;
        double attenuation;
        bool operator==(const WindowKey&) const = default;
    };

    /// Settings that the sizes of stores hang on and that computing reads.
    struct Layout {
        SpectrumEstimatorEnum::InputDomain inputDomain;
        SpectrumEstimatorEnum::Method method;
        bool twoSided;
        bool trimmed;
        bool maxHold;
        bool minHold;
        std::size_t numTapsPerBand;
        std::size_t segmentLength;
        bool operator==(const Layout&) const = default;
    };

    /// Some channels of a segment, and the weight of its row in the average, 0 for none.
    struct SegmentPart {
        int signal;
        std::size_t segment;
        std::size_t first;
        std::size_t end;
        double averageWeight;
    };
    /// Segments that are read in the frame at hand; none without data.
    struct SegmentsInFrame {
        const double* data = nullptr;
        std::size_t frameSize = 0;
        std::size_t first = 0;  ///< sample with which the first of them begins
    };
    /// What the decimator remembers from one segment to the next.
    struct ZoomState {
        std::vector<double> history;                   ///< [all channels * 48 d - 1] last input samples, as stored
        std::vector<std::complex<double>> lastPoints;  ///< [all channels * O] what the next segment shares
    };
    /// How the first zoomed segment of a channel begins.
    enum class ZoomStart { undecided, waitingForOverlap, done };

    template <class Sample>
    struct FilterbankStores {
        std::vector<Sample> lines;         ///< [all channels * B * taps] delay lines, newest sample first
        std::vector<Sample> accumulators;  ///< [all channels * B * 2] what is complete, and what is under way

        void resize(std::size_t bands, std::size_t taps) {
            lines.resize(bands * taps);
            accumulators.resize(2 * bands);
        }
        void reset() {
            std::fill(lines.begin(), lines.end(), Sample{});
            std::fill(accumulators.begin(), accumulators.end(), Sample{});
        }
    };

    /// The same in the order of the kernels.
    struct FilterbankKernelStores {
        bool inUse = false;
        polyphase::SampleKind kind = polyphase::SampleKind::real;
        std::size_t numBands = 0;
        std::size_t numTaps = 0;
        AlignedVector<double> taps;
        std::vector<AlignedVector<double>> delayStores;  ///< one a channel
    };

    // State.
    std::mutex mutex;
    bool isLocked_ = false;
    std::optional<Layout> layoutAtSetup;  ///< none before the first setup, and after one that failed
    bool layoutFits = false;              ///< nothing has been set since it was seen to be the present one
    bool overlapChanged = false;
    bool propertyChanged = false;
    bool resetAveragingStates = true;
    bool resetFilterbankStates = true;
    bool resetMaxMinHoldStates = true;
    bool resetSignalBuffers = false;
    bool flushSpectrumBuffer = true;
    bool desiredSegmentLengthMet = false;
    bool dataHasNaNs = false;
    std::size_t numSegments = 1;
    std::size_t numSpectrumBlocks = 1;
    std::size_t numSamplesProcessed = 0;
    std::size_t numUpdatesProcessed = 0;
    std::size_t totalNumSamplesProcessed = 0;
    std::optional<SpectrumBuffer> spectrumBuffer;
    spectrumEstimatorMetaDataStruct metaData;
    std::uint64_t recordVersion = 0;
    std::uint64_t numHoldResets = 0;
    AlignedVector<double> averagedSpectrum;
    std::vector<double> averagingWeights;
    std::vector<double> maxHoldPSD;
    std::vector<double> minHoldPSD;
    std::vector<double> spectrogramCarry;
    ZoomState zoomState;
    FilterbankStores<std::complex<double>> complexBank;  ///< plain code, if any signal is complex, or with zoom
    FilterbankStores<double> realBank;                   ///< plain code, otherwise
    FilterbankKernelStores kernelBank;
    std::vector<ZoomStart> zoomStarts;  ///< of each channel

    std::optional<WindowKey> builtWindow;  ///< what windowData was built from, unless it is a custom one
    std::vector<std::pair<WindowKey, double>> knownENBWs;  ///< lengths tried for an RBW; windows take long to build

    // Scratch.
    SpectrumTransform transform;
    SegmentsInFrame segmentsInFrame;
    std::vector<double> averageWeights;  ///< of the segments at hand
    bool rowsAreInAverage = false;       ///< the rows of the last segment stand in averagedSpectrum alone
    std::vector<double> rowScratch;
    std::vector<unsigned long> conversionRange;
    std::vector<std::complex<double>> zoomOutput;  ///< [all channels * L] decimated samples of the segment at hand
    SampleVector<double> zoomHead;                 ///< end of the history and beginning of a segment, side by side
    ZoomState zoomStateAtStart;
};

}  // namespace dspwavedecks

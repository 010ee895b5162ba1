#include "PolyphaseBank.h"

#include <algorithm>

#include "GroupKernels.h"
#include "InstructionSet.h"
#include "PolyphaseLayout.h"

namespace dspwavedecks::polyphase {

namespace {

GroupKernel bestKernel() {
    static const GroupKernel best = groupKernelFor(isSupported(InstructionSet::avx512) ? InstructionSet::avx512
                                                   : isSupported(InstructionSet::avx2) ? InstructionSet::avx2
                                                                                       : InstructionSet::portable);
    return best;
}

/// One channel at work. Its delay store begins with two numbers, so that a store of zeros is an empty past: the row
/// that the next segment goes to, and the number of bands that have had samples, behind which the past is all zeros.
class Channel {
public:
    Channel(GroupKernel kernel, const Bank& bank, SampleKind kind, double* delayStore)
        : kernel_(kernel),
          layout_{bank.numBands, bank.numTaps, static_cast<std::size_t>(kind)},
          tapStore_(bank.tapStore),
          delayStore_(delayStore) {}

    void filterSegments(const double* samples, std::size_t segmentLength, std::size_t numSegments, Output output,
                        double* rows, std::size_t rowStride);

private:
    void filterLongSegment(const double* samples, std::size_t length, Output output, double* row);
    void filterTogether(const double* samples, std::size_t length, std::size_t numSegments, Output output, double* rows,
                        std::size_t rowStride, bool comesAlone);
    void keepBack(std::size_t firstBand, std::size_t endBand);
    void moveBack(double* plane, std::size_t width, std::size_t first, std::size_t end);

    std::size_t position() const { return static_cast<std::size_t>(delayStore_[0]); }
    std::size_t numReached() const { return static_cast<std::size_t>(delayStore_[1]); }
    std::size_t numBegun() const { return static_cast<std::size_t>(delayStore_[2]); }

    GroupKernel kernel_;
    Layout layout_;
    const double* tapStore_;
    double* delayStore_;
};

void Channel::filterSegments(const double* samples, std::size_t segmentLength, std::size_t numSegments, Output output,
                             double* rows, std::size_t rowStride) {
    if (layout_.numBands == 0) {
        return;
    }
    const bool allGoOn = segmentLength >= numReached();
    const bool comesAlone = numSegments == 1 && allGoOn && segmentLength <= layout_.numBands && layout_.numTaps > 0;
    for (std::size_t done = 0; done < numSegments;) {
        const double* source = samples + done * segmentLength * layout_.numPlanes;
        double* row = rows + done * rowStride;
        if (segmentLength > layout_.numBands) {
            filterLongSegment(source, segmentLength, output, row);
            ++done;
            continue;
        }
        const std::size_t together = allGoOn ? std::min(numSegments - done, Layout::groupSize) : 1;
        filterTogether(source, segmentLength, together, output, row, rowStride, comesAlone);
        done += together;
    }
}

void Channel::filterLongSegment(const double* samples, std::size_t length, Output output, double* row) {
    for (std::size_t done = 0; done < length; done += layout_.numBands) {
        const std::size_t turn = std::min(length - done, layout_.numBands);
        filterTogether(samples + done * layout_.numPlanes, turn, 1, done == 0 ? output : Output::none, row, 0, false);
    }
}

void Channel::filterTogether(const double* samples, std::size_t length, std::size_t numSegments, Output output,
                             double* rows, std::size_t rowStride, bool comesAlone) {
    keepBack(length, numReached());
    const std::size_t begun = comesAlone ? numBegun() : 0;
    kernel_({layout_, output, comesAlone, begun, tapStore_, delayStore_, position(), samples, length, numSegments, rows,
             rowStride});
    delayStore_[0] = static_cast<double>((position() + numSegments) % layout_.period());
    delayStore_[1] = static_cast<double>(std::max(numReached(), length));
    delayStore_[2] = comesAlone ? static_cast<double>((begun + 1) % (Layout::numAhead + 1)) : 0;
}

/// The rows move on with each segment; a band that a segment doesn't reach has its past moved along.
void Channel::keepBack(std::size_t firstBand, std::size_t endBand) {
    for (std::size_t band = firstBand; band < endBand;) {
        const std::size_t strip = band / Layout::stripWidth;
        const std::size_t begin = strip * Layout::stripWidth;
        const std::size_t end = std::min(endBand, begin + Layout::stripWidth);
        for (std::size_t plane = 0; plane < layout_.numPlanes; ++plane) {
            moveBack(delayStore_ + layout_.planeOffset(strip, plane), layout_.widthOf(strip), band - begin,
                     end - begin);
        }
        band = end;
    }
}

void Channel::moveBack(double* plane, std::size_t width, std::size_t first, std::size_t end) {
    const std::size_t period = layout_.period();
    for (std::size_t age = 0; age + 1 < layout_.numTaps; ++age) {
        const std::size_t to = (position() + period - age) % period;
        const std::size_t from = (to + period - 1) % period;
        std::copy(plane + from * width + first, plane + from * width + end, plane + to * width + first);
        if (to < Layout::groupSize - 1) {
            std::copy(plane + from * width + first, plane + from * width + end, plane + (to + period) * width + first);
        }
    }
}

}  // namespace

GroupKernel groupKernelFor(InstructionSet set) {
#if defined(__x86_64__)
    if (set == InstructionSet::avx512) {
        return filterGroupAvx512;
    }
    if (set == InstructionSet::avx2) {
        return filterGroupAvx2;
    }
#endif
    static_cast<void>(set);
    return filterGroupPortable;
}

std::size_t tapStoreSize(std::size_t numBands, std::size_t numTaps) {
    return Layout{numBands, numTaps, 1}.paddedBands() * numTaps;
}

void arrangeTaps(const double* branches, std::size_t numBands, std::size_t numTaps, double* tapStore) {
    const Layout layout{numBands, numTaps, 1};
    std::fill_n(tapStore, tapStoreSize(numBands, numTaps), 0.0);
    for (std::size_t band = 0; band < numBands; ++band) {
        const double* branch = branches + (band == 0 ? 0 : numBands - band) * numTaps;
        const std::size_t strip = band / Layout::stripWidth;
        double* column = tapStore + strip * Layout::stripWidth * numTaps + band % Layout::stripWidth;
        for (std::size_t tap = 0; tap < numTaps; ++tap) {
            column[tap * layout.widthOf(strip)] = branch[tap];
        }
    }
}

std::size_t delayStoreSize(std::size_t numBands, std::size_t numTaps, SampleKind kind) {
    return Layout{numBands, numTaps, static_cast<std::size_t>(kind)}.delayStoreSize();
}

void analyzeWith(GroupKernel kernel, const Bank& bank, SampleKind kind, double* delayStore, const double* samples,
                 std::size_t segmentLength, std::size_t numSegments, Output output, double* rows,
                 std::size_t rowStride) {
    Channel(kernel, bank, kind, delayStore)
        .filterSegments(samples, segmentLength, numSegments, output, rows, rowStride);
}

void analyze(const Bank& bank, SampleKind kind, double* delayStore, const double* samples, std::size_t segmentLength,
             std::size_t numSegments, double* fftInput, std::size_t rowStride) {
    analyzeWith(bestKernel(), bank, kind, delayStore, samples, segmentLength, numSegments, Output::complexRows,
                fftInput, rowStride);
}

void analyzeToReal(const Bank& bank, double* delayStore, const double* samples, std::size_t segmentLength,
                   double* row) {
    analyzeWith(bestKernel(), bank, SampleKind::real, delayStore, samples, segmentLength, 1, Output::realRow, row, 0);
}

}  // namespace dspwavedecks::polyphase

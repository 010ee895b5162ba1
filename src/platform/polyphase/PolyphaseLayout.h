#pragma once

#include <algorithm>
#include <cstddef>

namespace dspwavedecks::polyphase {

/// How the stores are laid out: in strips of bands, each with all its rows one after the other. A strip and its taps
/// fit into the first cache together, rows are walked in order, and no stride is a power of two as long as a page.
struct Layout {
    /// Bands in a strip; the last one may be narrower, in steps of 8, and is filled up with taps of 0.
    static constexpr std::size_t stripWidth = 64;
    /// Segments that are filtered together: each tap that is loaded serves all of them.
    static constexpr std::size_t groupSize = 8;
    /// Segments after one that comes alone whose sums are begun beside its own. Its time goes into fetching taps and
    /// past, which they need again but for the newest rows: that saves half of the fetching, and 0.25 (real samples) to
    /// 0.4 (complex) of the time.
    static constexpr std::size_t numAhead = 3;
    /// Doubles before the strips: the state of the channel.
    static constexpr std::size_t headerSize = 8;

    std::size_t numBands;
    std::size_t numTaps;
    std::size_t numPlanes;  ///< 1 for real samples, 2 for complex ones: real parts and imaginary parts lie apart

    std::size_t numStrips() const { return (numBands + stripWidth - 1) / stripWidth; }
    std::size_t widthOf(std::size_t strip) const {
        return std::min(stripWidth, (numBands - strip * stripWidth + 7) / 8 * 8);
    }
    std::size_t paddedBands() const { return (numBands + 7) / 8 * 8; }

    /// Rows go round: the past that the taps reach and a group of new ones.
    std::size_t period() const { return std::max<std::size_t>(numTaps, 1) - 1 + groupSize; }
    /// The first rows stand a second time behind the last, so that any `groupSize` rows in sequence lie in sequence.
    std::size_t numRows() const { return period() + groupSize - 1; }
    /// Behind the rows of a plane: what the bands give to the next segment, and the sums that are begun.
    std::size_t carryRow() const { return numRows(); }
    std::size_t aheadRow() const { return carryRow() + 1; }
    std::size_t numAllRows() const { return aheadRow() + numAhead; }

    std::size_t delayStoreSize() const { return headerSize + numAllRows() * numPlanes * paddedBands(); }
    std::size_t stripOffset(std::size_t strip) const {
        return headerSize + numAllRows() * numPlanes * strip * stripWidth;
    }
    /// Begin of a plane within its strip.
    std::size_t planeOffset(std::size_t strip, std::size_t plane) const {
        return stripOffset(strip) + numAllRows() * plane * widthOf(strip);
    }
};

}  // namespace dspwavedecks::polyphase

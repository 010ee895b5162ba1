// Filters a group of segments, strip by strip; see VectorType.inl for the macros that shape it.

constexpr std::size_t groupSize = Layout::groupSize;
constexpr std::size_t stripWidth = Layout::stripWidth;

constexpr std::size_t numAhead = Layout::numAhead;

/// A strip of bands under work.
struct Strip {
    std::size_t firstBand;
    std::size_t width;
    std::size_t numReached;  ///< bands that the segments reach
    std::size_t numWritten;  ///< bands that the bank has
    const double* taps;
    double* planes[2];
    double* carries[2];
    double* sums[2][groupSize];  ///< where the sums of each plane and segment go
};

VECTOR_INLINE void copyRow(const double* source, double* destination, std::size_t n) {
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        store(destination + i, load(source + i));
    }
    for (; i < n; ++i) {
        destination[i] = source[i];
    }
}

VECTOR_INLINE void addRow(const double* source, double* destination, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        destination[i] += source[i];
    }
}

VECTOR_INLINE void zeroRow(double* destination, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        destination[i] = 0;
    }
}

VECTOR_INLINE void interleaveRow(const double* real, const double* imaginary, double* destination, std::size_t n) {
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        Doubles low;
        Doubles high;
        interleave(load(real + i), imaginary == nullptr ? Doubles{} : load(imaginary + i), low, high);
        store(destination + 2 * i, low);
        store(destination + 2 * i + lanes, high);
    }
    for (; i < n; ++i) {
        destination[2 * i] = real[i];
        destination[2 * i + 1] = imaginary == nullptr ? 0.0 : imaginary[i];
    }
}

VECTOR_INLINE void separateRow(const double* source, double* real, double* imaginary, std::size_t n) {
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        Doubles evens;
        Doubles odds;
        separate(load(source + 2 * i), load(source + 2 * i + lanes), evens, odds);
        store(real + i, evens);
        store(imaginary + i, odds);
    }
    for (; i < n; ++i) {
        real[i] = source[2 * i];
        imaginary[i] = source[2 * i + 1];
    }
}

/// The new samples of a strip become rows of its past; the first rows also where they stand a second time.
VECTOR_INLINE void appendRows(const Group& group, const Strip& strip) {
    const std::size_t period = group.layout.period();
    const std::size_t numPlanes = group.layout.numPlanes;
    for (std::size_t j = 0; j < group.numSegments; ++j) {
        const double* source = group.samples + (j * group.segmentLength + strip.firstBand) * numPlanes;
        const std::size_t row = group.position + j;
        if (numPlanes == 1) {
            copyRow(source, strip.planes[0] + row * strip.width, strip.numReached);
        } else {
            separateRow(source, strip.planes[0] + row * strip.width, strip.planes[1] + row * strip.width,
                        strip.numReached);
        }
        if (row >= period || row < groupSize - 1) {
            const std::size_t twin = row >= period ? row - period : row + period;
            for (std::size_t p = 0; p < numPlanes; ++p) {
                copyRow(strip.planes[p] + row * strip.width, strip.planes[p] + twin * strip.width, strip.numReached);
            }
        }
    }
}

/// Sums over the taps for `numSums` rows at once, so that each tap that is loaded serves all of them.
/// newest  row of the first sum; later ones follow, its past lies before it
/// direct  taps until the rows begin again at the other end, `period` rows further on
template <std::size_t numSums>
VECTOR_INLINE void filterRows(const double* taps, std::size_t numTaps, const double* newest, std::size_t width,
                              std::size_t direct, std::size_t period, double* const* sums) {
    for (std::size_t column = 0; column < width; column += lanes) {
        Doubles sum[numSums] = {};
        const double* tap = taps + column;
        const double* row = newest + column;
        const double* const turn = tap + direct * width;
        const double* const end = tap + numTaps * width;
        for (; tap != turn; tap += width, row -= width) {
            const Doubles weight = load(tap);
            for (std::size_t j = 0; j < numSums; ++j) {
                sum[j] = multiplyAdd(weight, load(row + j * width), sum[j]);
            }
        }
        for (row += period * width; tap != end; tap += width, row -= width) {
            const Doubles weight = load(tap);
            for (std::size_t j = 0; j < numSums; ++j) {
                sum[j] = multiplyAdd(weight, load(row + j * width), sum[j]);
            }
        }
        for (std::size_t j = 0; j < numSums; ++j) {
            store(sums[j] + column, sum[j]);
        }
    }
}

VECTOR_INLINE void filterTogether(const Group& group, const Strip& strip, std::size_t plane) {
    const std::size_t numTaps = group.layout.numTaps;
    const std::size_t period = group.layout.period();
    for (std::size_t j = 0; j < group.numSegments;) {
        const std::size_t position = group.position + j;
        const std::size_t direct = position + 1 < numTaps ? position + 1 : numTaps;
        const double* newest = strip.planes[plane] + position * strip.width;
        double* const* sums = strip.sums[plane] + j;
        const std::size_t left = group.numSegments - j;
        if (left >= 8) {
            filterRows<8>(strip.taps, numTaps, newest, strip.width, direct, period, sums);
            j += 8;
        } else if (left >= 4) {
            filterRows<4>(strip.taps, numTaps, newest, strip.width, direct, period, sums);
            j += 4;
        } else if (left >= 2) {
            filterRows<2>(strip.taps, numTaps, newest, strip.width, direct, period, sums);
            j += 2;
        } else {
            filterRows<1>(strip.taps, numTaps, newest, strip.width, direct, period, sums);
            j += 1;
        }
    }
}

/// One tap for the segment at hand and for those ahead of it, whose past is the same, one place further on for each.
VECTOR_INLINE void addTap(Doubles weight, Doubles sample, Doubles (&past)[numAhead + 1], Doubles (&sum)[numAhead + 1]) {
    for (std::size_t i = numAhead; i > 0; --i) {
        past[i] = past[i - 1];
    }
    past[0] = sample;
    for (std::size_t i = 0; i <= numAhead; ++i) {
        sum[i] = multiplyAdd(weight, past[i], sum[i]);
    }
}

/// The sums of a segment, and those of the next ones over the samples that are there.
VECTOR_INLINE void filterAndLookAhead(const Group& group, const Strip& strip, std::size_t plane) {
    const std::size_t width = strip.width;
    const std::size_t numTaps = group.layout.numTaps;
    const std::size_t direct = group.position + 1 < numTaps ? group.position + 1 : numTaps;
    double* ahead = strip.planes[plane] + group.layout.aheadRow() * width;
    for (std::size_t column = 0; column < width; column += lanes) {
        Doubles sum[numAhead + 1] = {};
        Doubles past[numAhead + 1] = {};
        const double* tap = strip.taps + column;
        const double* row = strip.planes[plane] + group.position * width + column;
        const double* const turn = tap + direct * width;
        const double* const end = tap + numTaps * width;
        for (; tap != turn; tap += width, row -= width) {
            addTap(load(tap), load(row), past, sum);
        }
        for (row += group.layout.period() * width; tap != end; tap += width, row -= width) {
            addTap(load(tap), load(row), past, sum);
        }
        store(strip.sums[plane][0] + column, sum[0]);
        for (std::size_t i = 0; i < numAhead; ++i) {
            store(ahead + i * width + column, sum[i + 1]);
        }
    }
}

/// The sums of a segment that are begun, and what it adds to those that are begun for the segments behind it.
VECTOR_INLINE void finishAhead(const Group& group, const Strip& strip, std::size_t plane) {
    const std::size_t width = strip.width;
    const double* newest = strip.planes[plane] + group.position * width;
    double* begun = strip.planes[plane] + (group.layout.aheadRow() + group.numBegun - 1) * width;
    const std::size_t numLeft = numAhead - group.numBegun;
    for (std::size_t column = 0; column < width; column += lanes) {
        const Doubles sample = load(newest + column);
        const double* tap = strip.taps + column;
        store(strip.sums[plane][0] + column, multiplyAdd(load(tap), sample, load(begun + column)));
        for (std::size_t i = 1; i <= numLeft && i < group.layout.numTaps; ++i) {
            double* next = begun + i * width + column;
            store(next, multiplyAdd(load(tap + i * width), sample, load(next)));
        }
    }
}

VECTOR_INLINE void filterPlane(const Group& group, const Strip& strip, std::size_t plane) {
    if (!group.comesAlone) {
        filterTogether(group, strip, plane);
    } else if (group.numBegun == 0) {
        filterAndLookAhead(group, strip, plane);
    } else {
        finishAhead(group, strip, plane);
    }
}

/// Writes a row of a strip: the sums of the segment before.
VECTOR_INLINE void writeRow(const Group& group, const Strip& strip, std::size_t segment, const double* real,
                            const double* imaginary) {
    double* row = group.rows + segment * group.rowStride;
    if (group.output == Output::realRow) {
        copyRow(real, row + strip.firstBand, strip.numWritten);
    } else if (imaginary == nullptr) {
        interleaveRow(real, nullptr, row + 2 * strip.firstBand, strip.numWritten);
    } else {
        interleaveRow(real, imaginary, row + 2 * strip.firstBand, strip.numWritten);
    }
}

/// Band 0 is complete at once: its sum goes to its own segment, beside what longer segments left for it.
VECTOR_INLINE void writeBandZero(const Group& group, const Strip& strip, const double (&left)[2]) {
    for (std::size_t p = 0; p < group.layout.numPlanes; ++p) {
        for (std::size_t j = 0; j < group.numSegments; ++j) {
            group.rows[j * group.rowStride + p] = strip.sums[p][j][0] + (j == 0 ? left[p] : 0.0);
        }
        strip.carries[p][0] = 0;
    }
}

/// The sums of the last segment go straight to what the next segment will get, and the others to `scratch`.
VECTOR_INLINE void filterAndWrite(const Group& group, Strip& strip, double (*scratch)[groupSize][stripWidth]) {
    const bool isComplex = group.layout.numPlanes == 2;
    const double left[2] = {strip.carries[0][0], isComplex ? strip.carries[1][0] : 0.0};
    writeRow(group, strip, 0, strip.carries[0], isComplex ? strip.carries[1] : nullptr);
    for (std::size_t p = 0; p < group.layout.numPlanes; ++p) {
        for (std::size_t j = 0; j < group.numSegments; ++j) {
            strip.sums[p][j] = j + 1 == group.numSegments ? strip.carries[p] : scratch[p][j];
        }
        if (strip.numReached > 0) {
            filterPlane(group, strip, p);
        }
        for (std::size_t j = 0; j < group.numSegments && strip.numReached < strip.width; ++j) {
            zeroRow(strip.sums[p][j] + strip.numReached, strip.width - strip.numReached);
        }
    }
    for (std::size_t j = 1; j < group.numSegments; ++j) {
        writeRow(group, strip, j, strip.sums[0][j - 1], isComplex ? strip.sums[1][j - 1] : nullptr);
    }
    if (strip.firstBand == 0) {
        writeBandZero(group, strip, left);
    }
}

/// A further turn of the commutator adds to what the next segment will get.
VECTOR_INLINE void filterAndAdd(const Group& group, Strip& strip, double (*scratch)[groupSize][stripWidth]) {
    for (std::size_t p = 0; p < group.layout.numPlanes && strip.numReached > 0; ++p) {
        strip.sums[p][0] = scratch[p][0];
        filterPlane(group, strip, p);
        addRow(scratch[p][0], strip.carries[p], strip.numReached);
    }
}

template <std::size_t fixedWidth>
VECTOR_INLINE void filterStrip(const Group& group, std::size_t index) {
    const Layout& layout = group.layout;
    Strip strip{};
    strip.firstBand = index * stripWidth;
    strip.width = fixedWidth != 0 ? fixedWidth : layout.widthOf(index);
    const std::size_t left = group.segmentLength > strip.firstBand ? group.segmentLength - strip.firstBand : 0;
    const std::size_t bands = layout.numBands - strip.firstBand;
    strip.numReached = left < strip.width ? left : strip.width;
    strip.numWritten = bands < strip.width ? bands : strip.width;
    strip.taps = group.tapStore + strip.firstBand * layout.numTaps;
    for (std::size_t p = 0; p < layout.numPlanes; ++p) {
        strip.planes[p] = group.delayStore + layout.planeOffset(index, p);
        strip.carries[p] = strip.planes[p] + layout.carryRow() * strip.width;
    }
    alignas(64) double scratch[2][groupSize][stripWidth];
    appendRows(group, strip);
    if (group.output == Output::none) {
        filterAndAdd(group, strip, scratch);
    } else {
        filterAndWrite(group, strip, scratch);
    }
}

VECTOR_TARGET void filterGroup(const Group& group) {
    const std::size_t numStrips = group.layout.numStrips();
    for (std::size_t strip = 0; strip < numStrips; ++strip) {
        if (group.layout.widthOf(strip) == stripWidth) {
            filterStrip<stripWidth>(group, strip);  // with a width that is known, rows are fixed offsets apart
        } else {
            filterStrip<0>(group, strip);
        }
    }
}

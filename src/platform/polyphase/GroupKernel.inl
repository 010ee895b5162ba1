// Filters a group of segments, strip by strip; see VectorType.inl for the macros that shape it.

constexpr std::size_t groupSize = Layout::groupSize;
constexpr std::size_t stripWidth = Layout::stripWidth;

/// The sums of one strip of one plane, a row a segment.
struct Sums {
    alignas(64) double rows[groupSize][stripWidth];
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

/// Every `numPlanes`-th sample, in order.
VECTOR_INLINE void takeRow(const double* samples, std::size_t numPlanes, double* destination, std::size_t n) {
    if (numPlanes == 1) {
        copyRow(samples, destination, n);
        return;
    }
    for (std::size_t i = 0; i < n; ++i) {
        destination[i] = samples[2 * i];
    }
}

/// Sums over the taps for `numSums` rows at once, so that each tap that is loaded serves all of them.
/// newest  row of the first sum; later ones follow, its past lies before it
/// direct  taps until the rows begin again at the other end, `period` rows further on
template <std::size_t numSums>
VECTOR_INLINE void filterRows(const double* taps, std::size_t numTaps, const double* newest, std::size_t width,
                              std::size_t direct, std::size_t period, double (*sums)[stripWidth]) {
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

VECTOR_INLINE void filterGroupOfRows(const Group& group, const double* taps, const double* plane, std::size_t width,
                                     Sums& sums) {
    const std::size_t numTaps = group.layout.numTaps;
    const std::size_t period = group.layout.period();
    for (std::size_t j = 0; j < group.numSegments;) {
        const std::size_t position = group.position + j;
        const std::size_t direct = position + 1 < numTaps ? position + 1 : numTaps;
        const double* newest = plane + position * width;
        const std::size_t left = group.numSegments - j;
        if (left >= 8) {
            filterRows<8>(taps, numTaps, newest, width, direct, period, sums.rows + j);
            j += 8;
        } else if (left >= 4) {
            filterRows<4>(taps, numTaps, newest, width, direct, period, sums.rows + j);
            j += 4;
        } else if (left >= 2) {
            filterRows<2>(taps, numTaps, newest, width, direct, period, sums.rows + j);
            j += 2;
        } else {
            filterRows<1>(taps, numTaps, newest, width, direct, period, sums.rows + j);
            j += 1;
        }
    }
}

/// The sums of a segment, and those of the next one over all it shares with this one.
VECTOR_INLINE void filterAndLookAhead(const double* taps, std::size_t numTaps, const double* newest, std::size_t width,
                                      std::size_t direct, std::size_t period, double* sums, double* ahead) {
    for (std::size_t column = 0; column < width; column += lanes) {
        const double* tap = taps + column;
        const double* row = newest + column;
        const double* const turn = tap + direct * width;
        const double* const end = tap + numTaps * width;
        Doubles samples = load(row);
        Doubles sum = load(tap) * samples;
        Doubles next{};
        for (tap += width, row -= width; tap != turn; tap += width, row -= width) {
            const Doubles weight = load(tap);
            next = multiplyAdd(weight, samples, next);
            samples = load(row);
            sum = multiplyAdd(weight, samples, sum);
        }
        for (row += period * width; tap != end; tap += width, row -= width) {
            const Doubles weight = load(tap);
            next = multiplyAdd(weight, samples, next);
            samples = load(row);
            sum = multiplyAdd(weight, samples, sum);
        }
        store(sums + column, sum);
        store(ahead + column, next);
    }
}

VECTOR_INLINE void finishAhead(const double* taps, const double* newest, std::size_t width, const double* ahead,
                               double* sums) {
    for (std::size_t column = 0; column < width; column += lanes) {
        store(sums + column, multiplyAdd(load(taps + column), load(newest + column), load(ahead + column)));
    }
}

VECTOR_INLINE void filterPlane(const Group& group, const double* taps, double* plane, std::size_t width, Sums& sums) {
    const std::size_t numTaps = group.layout.numTaps;
    const double* newest = plane + group.position * width;
    double* ahead = plane + group.layout.aheadRow() * width;
    if (group.pairing == Pairing::closes) {
        finishAhead(taps, newest, width, ahead, sums.rows[0]);
    } else if (group.pairing == Pairing::opens) {
        const std::size_t direct = group.position + 1 < numTaps ? group.position + 1 : numTaps;
        filterAndLookAhead(taps, numTaps, newest, width, direct, group.layout.period(), sums.rows[0], ahead);
    } else {
        filterGroupOfRows(group, taps, plane, width, sums);
    }
}

/// The new samples of a strip become rows of its past; the first rows also where they stand a second time.
VECTOR_INLINE void appendRows(const Group& group, const double* samples, double* plane, std::size_t width,
                              std::size_t n) {
    const std::size_t period = group.layout.period();
    const std::size_t numPlanes = group.layout.numPlanes;
    for (std::size_t j = 0; j < group.numSegments; ++j) {
        const double* source = samples + j * group.segmentLength * numPlanes;
        const std::size_t row = group.position + j;
        takeRow(source, numPlanes, plane + row * width, n);
        if (row >= period) {
            takeRow(source, numPlanes, plane + (row - period) * width, n);
        } else if (row < groupSize - 1) {
            takeRow(source, numPlanes, plane + (row + period) * width, n);
        }
    }
}

/// Writes the rows of a strip, each one segment late: what the segment before left comes first.
VECTOR_INLINE void writeRows(const Group& group, const Sums* sums, double* const* carries, std::size_t firstBand,
                             std::size_t n) {
    for (std::size_t j = 0; j < group.numSegments; ++j) {
        const double* real = j == 0 ? carries[0] : sums[0].rows[j - 1];
        double* row = group.rows + j * group.rowStride;
        if (group.output == Output::realRow) {
            copyRow(real, row + firstBand, n);
        } else if (group.layout.numPlanes == 1) {
            interleaveRow(real, nullptr, row + 2 * firstBand, n);
        } else {
            const double* imaginary = j == 0 ? carries[1] : sums[1].rows[j - 1];
            interleaveRow(real, imaginary, row + 2 * firstBand, n);
        }
    }
}

/// Band 0 is complete at once: its sum goes to its own segment, beside what longer segments left for it.
VECTOR_INLINE void writeBandZero(const Group& group, Sums* sums, double* const* carries) {
    for (std::size_t plane = 0; plane < group.layout.numPlanes; ++plane) {
        for (std::size_t j = 0; j < group.numSegments; ++j) {
            const double left = j == 0 ? carries[plane][0] : 0.0;
            group.rows[j * group.rowStride + plane] = sums[plane].rows[j][0] + left;
        }
        sums[plane].rows[group.numSegments - 1][0] = 0;
    }
}

template <std::size_t fixedWidth>
VECTOR_INLINE void filterStrip(const Group& group, std::size_t strip) {
    const Layout& layout = group.layout;
    const std::size_t width = fixedWidth != 0 ? fixedWidth : layout.widthOf(strip);
    const std::size_t firstBand = strip * stripWidth;
    const std::size_t left = group.segmentLength > firstBand ? group.segmentLength - firstBand : 0;
    const std::size_t n = left < width ? left : width;
    const double* taps = group.tapStore + firstBand * layout.numTaps;
    Sums sums[2];
    double* carries[2] = {nullptr, nullptr};
    for (std::size_t p = 0; p < layout.numPlanes; ++p) {
        double* plane = group.delayStore + layout.planeOffset(strip, p);
        if (n > 0) {
            appendRows(group, group.samples + firstBand * layout.numPlanes + p, plane, width, n);
            filterPlane(group, taps, plane, width, sums[p]);
        }
        for (std::size_t j = 0; j < group.numSegments && n < width; ++j) {
            zeroRow(sums[p].rows[j] + n, width - n);
        }
        carries[p] = plane + layout.carryRow() * width;
    }
    if (group.output != Output::none) {
        const std::size_t bands = layout.numBands - firstBand;
        writeRows(group, sums, carries, firstBand, bands < width ? bands : width);
        if (strip == 0) {
            writeBandZero(group, sums, carries);
        }
    }
    for (std::size_t p = 0; p < layout.numPlanes; ++p) {
        const double* latest = sums[p].rows[group.numSegments - 1];
        if (group.output == Output::none) {
            addRow(latest, carries[p], width);
        } else {
            copyRow(latest, carries[p], width);
        }
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

#include "MeasurementsDataCache.h"

#include <algorithm>

namespace dspwavedecks {

namespace {

using Ring = boost::circular_buffer<double>;

/// Copies the entries first .. last of a ring, which lie in at most two pieces.
void copyEntries(const Ring& ring, std::size_t first, std::size_t last, double* out) {
    const auto one = ring.array_one();
    const auto two = ring.array_two();
    if (first < one.second) {
        out = std::copy(one.first + first, one.first + std::min(last, one.second), out);
    }
    if (last > one.second) {
        const std::size_t begin = first > one.second ? first - one.second : 0;
        std::copy(two.first + begin, two.first + (last - one.second), out);
    }
}

}  // namespace

void MeasurementsDataCache::setCapacity(const unsigned long& n) {
    if (n == data.capacity()) {
        return;
    }
    Ring newData(n);
    Ring newTime(n);
    const std::size_t kept = std::min<std::size_t>(n, size());
    newData.insert(newData.end(), data.begin(), data.begin() + static_cast<std::ptrdiff_t>(kept));
    newTime.insert(newTime.end(), time.begin(), time.begin() + static_cast<std::ptrdiff_t>(kept));
    forgetNewest(size() - kept);
    data.swap(newData);
    time.swap(newTime);
}

/// Takes account of the newest entries going away.
void MeasurementsDataCache::forgetNewest(std::size_t count) {
    risingCount = std::min<std::size_t>(risingCount, size());
    risingCount -= std::min(risingCount, count);
}

void MeasurementsDataCache::push(double stamp, double value) {
    risingCount = !time.empty() && stamp >= time.back() ? risingCount + 1 : 1;
    time.push_back(stamp);
    data.push_back(value);
}

void MeasurementsDataCache::addData(const double* frame, const unsigned long& channel, const unsigned long& numPoints) {
    if (numPoints == 0) {
        return;
    }
    const double* values = frame + numPoints * (channel + 1);
    for (unsigned long i = 0; i < numPoints; ++i) {
        if (!(frame[i] < lastTime)) {
            push(frame[i], values[i]);
        }
    }
    lastTime = frame[numPoints - 1];
}

void MeasurementsDataCache::addDataFrameBased(const double* frame, const unsigned long& channel,
                                              const unsigned long& numFrames, const unsigned long& frameSize,
                                              double frameTime) {
    if (numFrames == 0 || frameSize == 0) {
        return;
    }
    const double interval = frameTime / static_cast<double>(frameSize);
    const double* values = frame + numFrames + numFrames * frameSize * channel;
    for (unsigned long i = 0; i < numFrames; ++i) {
        if (frame[i] < lastTime) {
            continue;
        }
        for (unsigned long k = 0; k < frameSize; ++k) {
            push(interval * static_cast<double>(k) + frame[i], values[numFrames * k + i]);
        }
    }
    lastTime = frame[numFrames - 1] + static_cast<double>(frameSize - 1) * frameTime / static_cast<double>(frameSize);
}

std::vector<double> MeasurementsDataCache::getDataInRange(const std::vector<unsigned long>& range) const {
    std::vector<double> result;
    copyDataInRange(range, result);
    return result;
}

std::vector<double> MeasurementsDataCache::getTimeInRange(const std::vector<unsigned long>& range) const {
    std::vector<double> result;
    if (range[0] < range[1]) {
        result.resize(range[1] - range[0]);
        copyEntries(time, range[0], range[1], result.data());
    }
    return result;
}

std::vector<double> MeasurementsDataCache::getTimeAndDataInRange(const std::vector<unsigned long>& range) const {
    std::vector<double> result;
    copyTimeAndDataInRange(range, result);
    return result;
}

void MeasurementsDataCache::copyDataInRange(const std::vector<unsigned long>& range, std::vector<double>& out) const {
    out.resize(range[0] < range[1] ? range[1] - range[0] : 0);
    if (!out.empty()) {
        copyEntries(data, range[0], range[1], out.data());
    }
}

void MeasurementsDataCache::copyTimeAndDataInRange(const std::vector<unsigned long>& range,
                                                   std::vector<double>& out) const {
    const std::size_t count = range[0] < range[1] ? range[1] - range[0] : 0;
    out.resize(2 * count);
    if (count > 0) {
        copyEntries(time, range[0], range[1], out.data());
        copyEntries(data, range[0], range[1], out.data() + count);
    }
}

unsigned long MeasurementsDataCache::firstNotBefore(double earliest) const {
    const auto isBefore = [earliest](double stamp) { return !(stamp >= earliest); };
    const auto found = timesRise() ? std::partition_point(time.begin(), time.end(), isBefore)
                                   : std::find_if_not(time.begin(), time.end(), isBefore);
    return static_cast<unsigned long>(found - time.begin());
}

unsigned long MeasurementsDataCache::endNotAfter(double latest) const {
    const auto isInTime = [latest](double stamp) { return stamp <= latest; };
    if (timesRise()) {
        return static_cast<unsigned long>(std::partition_point(time.begin(), time.end(), isInTime) - time.begin());
    }
    return static_cast<unsigned long>(time.rend() - std::find_if(time.rbegin(), time.rend(), isInTime));
}

void MeasurementsDataCache::reset() {
    data.clear();
    time.clear();
    risingCount = 0;
    lastTime = -std::numeric_limits<double>::infinity();
}

void MeasurementsDataCache::onRollback(double rollbackTime, double startTime) {
    if (time.empty()) {
        return;
    }
    if (rollbackTime <= startTime) {
        reset();
        return;
    }
    const unsigned long found = firstNotBefore(rollbackTime);
    if (found == size()) {
        return;
    }
    const std::size_t dropped = size() - (time[found] == rollbackTime ? found + 1 : found);
    forgetNewest(dropped);
    time.erase_end(dropped);
    data.erase_end(dropped);
}

}  // namespace dspwavedecks

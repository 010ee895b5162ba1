#pragma once

#include <boost/circular_buffer.hpp>
#include <cstddef>
#include <limits>
#include <vector>

namespace dspwavedecks {

/// The stretch of one channel that the time measurements look at: two rings of samples and of their time stamps, of one
/// length and capacity. Index 0 is the oldest sample; a full ring loses its oldest at each sample added.
///
/// Time stamps stand as they came from the stream, without the display's offset. They need not rise: a frame may hold
/// stamps that fall back.
class MeasurementsDataCache {
public:
    static constexpr unsigned long defaultCapacity = 5000;

    MeasurementsDataCache() : data(defaultCapacity), time(defaultCapacity) {}

    /// Sets the capacity of both rings and keeps the oldest samples that fit, in order. The member `capacity` is the
    /// caller's to set. Throws std::length_error ("circular_buffer") or std::bad_alloc, then nothing is lost.
    void setCapacity(const unsigned long& n);

    /// Adds one frame of a buffer of times, then channels, numPoints each. Samples older than the last time stamp of
    /// the frame offered before are dropped, so that a stretch that is played again does no harm; one with exactly that
    /// stamp is stored again. Within the frame stamps may fall back.
    void addData(const double* frame, const unsigned long& channel, const unsigned long& numPoints);

    /// Adds frames of frameSize samples with one time stamp each, laid out as numFrames times, then per channel
    /// frameSize blocks of numFrames values.
    /// frameTime  s, length of one frame
    void addDataFrameBased(const double* frame, const unsigned long& channel, const unsigned long& numFrames,
                           const unsigned long& frameSize, double frameTime);

    /// Copies of the whole rings, oldest first.
    std::vector<double> getData() const { return getDataInRange({0, size()}); }
    std::vector<double> getTime() const { return getTimeInRange({0, size()}); }

    /// Copies of the entries range[0] .. range[1]; empty if that is out of order. The range must lie within the size.
    std::vector<double> getDataInRange(const std::vector<unsigned long>& range) const;
    std::vector<double> getTimeInRange(const std::vector<unsigned long>& range) const;
    /// The times of the range followed by its samples, the form of a frame of one channel.
    std::vector<double> getTimeAndDataInRange(const std::vector<unsigned long>& range) const;

    /// The same into a vector of the caller's, which keeps its memory from frame to frame.
    void copyDataInRange(const std::vector<unsigned long>& range, std::vector<double>& out) const;
    void copyTimeAndDataInRange(const std::vector<unsigned long>& range, std::vector<double>& out) const;

    unsigned long size() const { return time.size(); }
    double timeAt(unsigned long index) const { return time[index]; }

    /// First index whose time is not below a given one; size() if there is none. O(log size) where the times rise.
    unsigned long firstNotBefore(double earliest) const;
    /// One past the last index whose time is at most a given one; 0 if there is none. O(log size) where the times rise.
    unsigned long endNotAfter(double latest) const;

    /// Empties the rings; every sample is taken again.
    void reset();

    /// Follows a simulation that stepped back: drops what is newer than rollbackTime; everything, as reset() does, at
    /// or before startTime. After a partial rollback samples enter again only from the last time offered on: meant so.
    void onRollback(double rollbackTime, double startTime);

    // State of the owner: what it asked for, and whether it may not ask for more.
    unsigned long capacity = defaultCapacity;
    double lastTime = -std::numeric_limits<double>::infinity();  ///< s, of the last sample offered, dropped or not
    bool memoryLimitReached = false;

private:
    void push(double stamp, double value);
    void forgetNewest(std::size_t count);
    bool timesRise() const { return risingCount >= time.size(); }

    boost::circular_buffer<double> data;
    boost::circular_buffer<double> time;
    std::size_t risingCount = 0;  ///< newest entries known to have times that don't fall
};

}  // namespace dspwavedecks

#pragma once

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <array>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "JsonArrays.h"
#include "PerformanceMetrics.h"
#include "wavedeck/WaveDeckDataProcStrategy.h"

namespace dspwavedecks {

/// What the strategies share: the walk from signals through channels to arrays of numbers, the parts of a message that
/// all have, and the attaching of measurements whose stage is active.
class DataStrategy : public wavedeck::WaveDeckDataProcStrategy {
public:
    ~DataStrategy() override;

    using Buffers = std::vector<std::vector<double>>;
    using ObjectPointer = Poco::SharedPtr<Poco::JSON::Object>;
    using ArrayPointer = Poco::JSON::Array::Ptr;
    /// Limits of the whole signal or of its magnitudes, and of its phases.
    using Limits = std::array<double, 2>;

    /// True for n = 0, and when the first n signals all have data.
    static bool areAllChannelDataValid(const Buffers& data, int n);
    static bool isSignalDataValid(const Buffers& data, int signal);

protected:
    DataStrategy();

    /// Smallest and largest finite value of a stretch; they stay at plus and minus infinity without one.
    struct LimitPair {
        Limits smallest;
        Limits largest;
        LimitPair();
    };

    /// What stands in one channel object besides its numbers.
    struct ChannelFacts {
        const char* axisKey;  ///< "time", "sample" or "frequency"
        ArrayPointer axis;    ///< shared by the channels of a signal
        const char* offsetKey;
        double offset;
        int subplotNum;
    };

    /// Number of signals that all of the host's lists hold.
    static int countSignals(const Buffers& data, int numSignals, const std::vector<int>& numChannels,
                            const std::vector<std::string>& ids);
    /// Points of each block of a buffer of that many blocks; 0 for no blocks.
    static int countPoints(const std::vector<double>& buffer, int blocks);
    /// 1 for the channels of the phase half of a signal that holds magnitude and phase, else 0.
    /// channel  counted from 1
    static int subplotOf(int channel, int channels, bool magPhase);
    /// The pair as the text of a JSON array.
    static std::string limitsText(const Limits& limits);

    void logPerformanceMetrics(ObjectPointer& message) { performance.log(message); }
    bool isStageActive(const std::string& name) const;

    using Packager = std::function<ObjectPointer(const std::string& clientID)>;
    /// Sets what `package` makes under `key` if one of the stages is active; says whether it did.
    bool attachIfActive(ObjectPointer& measurements, const char* key, std::initializer_list<const char*> stages,
                        const Packager& package) const;

    /// An array that no message holds any more, to be written anew.
    ArrayPointer takeArray(std::size_t length) { return arrays.take(length); }
    JsonArrayPool& arrayPool() { return arrays; }
    ArrayPointer packageNumbers(const double* values, std::size_t count, double shift = 0.0);
    ArrayPointer packageIntegers(const std::vector<int>& values);

    /// The object of one channel. Its identifiers are "db" + channel, counted from 0, and that of its signal.
    static ObjectPointer makeChannel(int channel, const std::string& id, const ChannelFacts& facts,
                                     const ArrayPointer& data, const ArrayPointer& nanIndex);
    /// The object of one signal.
    static ObjectPointer makeSignal(const ArrayPointer& channels, int numChannels, const std::string& id,
                                    const std::string& dataMin, const std::string& dataMax);

    // Scratch.
    std::vector<int> nanPlaces;

private:
    PerformanceMetrics performance;
    JsonArrayPool arrays;
};

}  // namespace dspwavedecks

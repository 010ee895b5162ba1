#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "JsonArrays.h"
#include "RememberedClient.h"
#include "SpectrumEstimator.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace dspwavedecks {

/// Estimates the spectra of a client's signals: hands options and frames to a SpectrumEstimator, gives its rows on to
/// the stages behind and publishes its record on the board, where strategies, measurements and queries read it.
///
/// Frames are raw, the channels without a leading block; `out` is the frequency grid and then a row a channel. A frame
/// that completes no update leaves `out` empty.
class SpectrumEstimatorFilter : public BaseFilter {
public:
    SpectrumEstimatorFilter();
    ~SpectrumEstimatorFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool isActive() override { return true; }
    bool isReadOnly() override { return false; }
    bool changesChannelSize() override { return true; }
    void setPropertiesOnSetup(const PropertyList& list) override;
    /// A change takes effect at the next frame, and resets what its setter marked.
    void setPropertiesOnTune(const PropertyList& list) override;
    void onInputSizeChange(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;
    /// Points of each channel in the frame in hand, which has no leading block.
    unsigned long getNumPointsPerChannel(const int& signal) override;

    // The record on the board. All take the class's mutex; the pointer that getSpectrumEstimatorMetaData returns is not
    // protected after the call.

    static void setSpectrumEstimatorMetaData(const std::string& clientID,
                                             const spectrumEstimatorMetaDataStruct& record);
    static bool hasSpectrumEstimatorMetaData(const std::string& clientID);
    /// Null if the board has none.
    static const spectrumEstimatorMetaDataStruct* getSpectrumEstimatorMetaData(const std::string& clientID);
    static std::vector<double> getFrequencyVector(const std::string& clientID);
    static unsigned long getSpectrumLength(const std::string& clientID);
    /// Hz, of the last update.
    static double getRBW(const std::string& clientID);

    /// The record's figures as a new object.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);
    /// The hold traces of one signal that are on: an array a channel with `length` points, the places of what is not
    /// finite, and the extreme of all signals as text.
    /// arrays  where the arrays of numbers come from
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID, int signal, int numChannels,
                                                           int length, JsonArrayPool& arrays);

    inline static const std::string spectrumEstimatorMetaData = "spectrumEstimatorMetaData";
    inline static const std::string spectrumLength = "spectrumLength";
    inline static const std::string rbw = "rbw";

    /// Guards the record on the board, "spectrumLength" and "rbw".
    inline static std::mutex mMutex;

protected:
    /// Hands a frame of a signal to the estimator, set up for it if that is due.
    /// signals  how many signals the estimator works on
    /// points   of each signal, points of a channel in the frame in hand
    void estimate(const double* data, std::vector<double>& out, int signal, int signals,
                  const std::vector<int>& points);
    /// Brings the board up to date after a frame of a signal.
    void publish(int signal, bool hasUpdate) {
        // A frame without an update would write what is there already.
        if (isRecordDue || hasUpdate || estimator->getRecordVersion() != publishedVersion) {
            publishRecord(signal);
        }
    }
    /// The RBW of the last update alone, for a board where something else wrote its entry.
    void publishRBW();
    /// Notes how many points a channel has in the frame in hand, in `points` of all signals.
    void setPoints(std::vector<int>& points, int signal, int count) {
        int& present = points[static_cast<std::size_t>(signal)];
        isInputSettled = isInputSettled && present == count;
        present = count;
    }

    std::unique_ptr<SpectrumEstimator> estimator;
    RememberedClient client;

private:
    void prepareEstimator(int signals, const std::vector<int>& points, bool isReplay);
    bool isInputChanged(int signals) const;
    bool isFrameSizeOf(int signal) const;
    void takeFrameSize(int signal);
    void publishRecord(int signal);

    // State.
    bool isInputSettled = false;         ///< the estimator knows all sizes, which have not changed since
    int signalsAtSetup = 0;              ///< what the estimator was last set up with
    std::vector<int> channelsAtSetup;    ///< the same
    std::vector<int> complexAtSetup;     ///< the same
    bool isRecordDue = true;             ///< the board lacks the whole record
    std::uint64_t publishedVersion = 0;  ///< of the estimator's record that the board holds
    std::uint64_t publishedResets = 0;   ///< of the hold traces, the same
};

}  // namespace dspwavedecks

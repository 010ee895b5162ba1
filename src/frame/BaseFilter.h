#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "OptionReaders.h"
#include "wavedeck/WaveDeckClientSettings.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace dspwavedecks {

/// Common base of the library's filters: the facts of the client's signals, the actions by which a filter is
/// configured, the arithmetic of the signal buffer and the choice of the measured signal and channel.
///
/// A signal buffer of c channels of P points holds P times, then the c channels, P points each. Channel counts of
/// `numChannels` are the host's: real and imaginary parts of complex channels are counted separately.
class BaseFilter : public wavedeck::WaveDeckTransformImpl {
public:
    ~BaseFilter() override;

    /// Runs the handler of the option "action"; an action that the filter did not register does nothing.
    void tuneImpl(const PropertyList& list) override;
    /// The same.
    void rollbackImpl(const PropertyList& list) override;

    bool isActive() override { return active; }
    bool isReadOnly() override { return true; }
    bool changesChannelSize() override { return false; }

    /// Action "setup": reads what the host knows of the client, all of it required, and the three span options if
    /// present. Derived filters go on with the virtual setPropertiesImpl.
    virtual void setPropertiesOnSetup(const PropertyList& list);
    virtual void setupEvents();
    /// Action "tune": calls setPropertiesImpl.
    virtual void setPropertiesOnTune(const PropertyList& list);
    /// Action "onInputSizeChange": reads channel counts and frame sizes again. The total of the channels keeps its
    /// value of the setup: meant so.
    virtual void onInputSizeChange(const PropertyList& list);
    /// Action "onRollback".
    virtual void onRollback(const PropertyList& list);
    /// What setup and tune share: adds this filter's entries to the board if they are absent and reads the options
    /// that may change at any time. An override begins with its base's.
    virtual void setPropertiesImpl(const PropertyList& list);

    /// Points per channel of the buffer in hand: inputLength / (channels + 1), the channels of a real signal doubled
    /// when it holds magnitude and phase.
    virtual unsigned long getNumPointsPerChannel(const int& signal);
    /// First index and one past the last of the measured channel in the buffer in hand. Nothing says that the buffer
    /// has that channel: ask isRangeInFrame before reading.
    virtual std::vector<unsigned long> getDataRange(const int& signal);

    /// Counts the channels of all signals, complex ones once, and keeps the total.
    unsigned long getTotalNumChannels();
    bool isLastSignal(int signal) const { return signal + 1 == numSignals; }
    bool getAutoSpan() const { return autoSpan_; }
    bool getForceComputeSpan() const { return forceComputeSpan; }
    void setForceComputeSpan(bool force) { forceComputeSpan = force; }
    /// Whether a custom span is in force: any but 0. Callers that need the seconds use getCustomSpanSeconds.
    bool getCustomSpan() const { return customSpan_ != 0.0; }
    double getCustomSpanSeconds() const { return customSpan_; }

    /// Measured signal and channel from the board, as "signal" and "channel" of a new object.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);

    inline static const std::string measurementSignal = "measurementSignal";
    inline static const std::string measurementChannel = "measurementChannel";

protected:
    BaseFilter();

    /// A virtual operation that answers an action; an override in a derived class is what runs.
    using ActionHandler = void (BaseFilter::*)(const PropertyList&);
    void registerAction(const std::string& action, ActionHandler handler);
    /// "setup", "tune" and "onInputSizeChange", which nearly every filter answers.
    void registerUsualActions();

    wavedeck::WaveDeckClientSettings& getBoard() const;

    /// Writes the measured signal and channel to the board, so that it shows the pair that the last run used.
    void updateFilterSignalAndChannel();
    /// Takes over the board's marks of the signals that hold magnitude and phase; keeps its own if there are none.
    void copyMagPhaseData(const std::string& key);

    bool isComplexSignal(int signal) const;
    /// True for a marked signal; marks that are missing count as not set.
    bool isMagPhaseSignal(int signal) const;
    /// Channels of a signal as the host counts them; 0 for a signal that is not there.
    int getChannelCount(int signal) const;
    /// True when first <= last <= inputLength.
    bool isRangeInFrame(const std::vector<unsigned long>& range) const;

    // Options.
    std::vector<int> numChannels;     ///< per signal, real and imaginary parts counted separately
    std::vector<int> frameSize;       ///< per signal, points per frame
    std::vector<bool> magPhaseData_;  ///< per signal, true when it holds magnitude and phase of each channel
    int numSignals = 0;
    long measurementSignal_ = 0;   ///< index of the measured signal
    long measurementChannel_ = 0;  ///< index of the measured channel
    double customSpan_ = 0.0;      ///< seconds
    bool autoSpan_ = false;        ///< the span follows the data
    bool active = false;           ///< the filter is switched on

    // Derived.
    std::vector<int> isComplex;  ///< per signal, non-zero when complex; a copy of the client's list
    unsigned long totalNumChannels = 0;
    bool timeBased = false;  ///< a copy of the client's flag

    // State.
    bool forceComputeSpan = true;  ///< the next range calculation must compute the span anew

private:
    void runAction(const PropertyList& list);

    std::unordered_map<std::string, std::function<void(const PropertyList&)>> actionTable;
};

}  // namespace dspwavedecks

#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "BaseFilter.h"

namespace dspwavedecks {

/// Picks frequency vector, RBW and VBW out of the frames of a block-diagram model in which they arrive on input ports,
/// and puts them on the board, from where the spectrum estimator behind takes them.
///
/// The port signals stand behind the data signals in the order frequency vector, RBW, VBW; a port that is not in use is
/// absent. A frame begins with the times of its simulation frames.
class BFInputPortParametersHandlerFilter : public BaseFilter {
public:
    BFInputPortParametersHandlerFilter();
    ~BFInputPortParametersHandlerFilter() override;

    /// Frequencies are those of the first simulation frame in hand, RBW and VBW the last value of the frame.
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool isActive() override { return true; }
    bool isReadOnly() override { return true; }
    /// Needs "clientID", "numSignals" and "frameSize".
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;

    // What the board holds for a client. All take the class's mutex; what is not there reads as empty, 0 or false.

    /// n  number of frequencies, in Hz
    static void setFrequencyVector(const std::string& clientID, const double* data, const std::size_t& n);
    static std::vector<double> getFrequencyVector(const std::string& clientID);
    static void setInputPortFrequencyVector(const std::string& clientID, bool isFromPort);
    static bool isFrequencyVectorSourceInputPort(const std::string& clientID);
    /// Hz. The entry is also the estimator's, which puts the RBW of its spectra there.
    static void setRBW(const std::string& clientID, double hertz);
    static double getRBW(const std::string& clientID);
    static void setInputPortRBW(const std::string& clientID, bool isFromPort);
    static bool isRBWSourceInputPort(const std::string& clientID);
    /// Hz
    static void setVBW(const std::string& clientID, double hertz);
    static double getVBW(const std::string& clientID);
    static void setInputPortVBW(const std::string& clientID, bool isFromPort);
    static bool isVBWSourceInputPort(const std::string& clientID);

    inline static const std::string frequencyVector = "frequencyVector";
    inline static const std::string inputPortFrequencyVector = "inputPortFrequencyVector";
    inline static const std::string rbw = "rbw";
    inline static const std::string inputPortRBW = "inputPortRBW";
    inline static const std::string vbw = "vbw";
    inline static const std::string inputPortVBW = "inputPortVBW";

    /// Guards the six entries of the board.
    inline static std::mutex mMutex;

private:
    void takeFrequencyVector(const double* data, int signal);
    void forgetUnusedPorts();

    // Options.
    bool inputPortFrequencyVector_ = false;
    bool inputPortRBW_ = false;
    bool inputPortVBW_ = false;

    // State.
    std::optional<double> lastRBW;  ///< Hz, what the port delivered last
};

}  // namespace dspwavedecks

#pragma once

#include <string>
#include <vector>

#include "wavedeck/TimeDeckThinnerFilter.h"

namespace dspwavedecks {

/// Reduces the points of a spectrum for display as its base does, and puts the lengths that came out on the board, one
/// a signal, for the strategy that makes the message.
class SpectrumThinnerFilter : public wavedeck::TimeDeckThinnerFilter {
public:
    SpectrumThinnerFilter();
    ~SpectrumThinnerFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesOnSetup(const wavedeck::PropertyList& list) override;

    /// The lengths on the board; null if there are none.
    static const std::vector<unsigned long>* getThinnedSpectrumLength(const std::string& clientID);

    inline static const std::string thinnedSpectrumLength = "thinnedSpectrumLength";

private:
    // Options.
    int numSignals = 0;
    std::vector<int> numChannels;  ///< real and imaginary parts counted separately

    // Derived.
    std::vector<int> isComplex;

    // State.
    std::vector<unsigned long> thinnedLengths;  ///< per signal, points of a channel
};

}  // namespace dspwavedecks

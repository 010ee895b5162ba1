#pragma once

#include <cstddef>
#include <vector>

namespace dspwavedecks {

/// Wipes hills out of a spectrum: a peak with both its flanks, each down to the first bin that rises again.
///
/// The runs of bins that are wiped already are kept, and a later walk that comes to one goes to its other end at once:
/// clearing h peaks costs the bins of the spectrum and h runs each, not h times the bins.
class HillClearer {
public:
    /// Forgets the runs: a new spectrum.
    void reset() { runs.clear(); }

    /// Sets the hill about a bin to 0: from the bin leftwards while psd[k-1] <= psd[k], rightwards while
    /// psd[k] >= psd[k+1]. The valley bins belong to the hill; a NaN ends it.
    /// psd    [n], n > index, in which nobody else has changed a bin since the last reset
    /// returns the number of bins of the hill, bins that were wiped before included
    std::size_t clear(std::vector<double>& psd, std::size_t index);

private:
    struct Run {
        std::size_t first;
        std::size_t last;
    };

    std::vector<Run> runs;  // disjoint, ascending, all bins 0
};

}  // namespace dspwavedecks

#pragma once

#include <cstddef>
#include <vector>

#include "ClientFacts.h"
#include "Display.h"
#include "SampleHistory.h"

namespace wavedeck::driver {

/// Points of a signal that a display keeps: all that a time message shows at most, and twice the span and a frame.
std::size_t displayCapacity(double span, const SignalFacts& signal);

/// The display of time data: each signal's newest samples, kept in a ring and laid out at an update. While a replay
/// runs, the replayed frame stands in its place.
class HistoryDisplay : public Display {
public:
    /// capacities: points kept of each signal
    explicit HistoryDisplay(const std::vector<std::size_t>& capacities);

    void take(std::size_t signal, const DisplayInput& input) override;
    void setForm(std::size_t signal, std::size_t channels, bool isMagPhase) override;
    void reserve(std::size_t signal, std::size_t points) override;
    void dropOutputs() override {}
    void dropAll() override;
    void dropNewerThan(double time) override;
    void endReplay() override;
    void layOut() override;
    void noteSeen() override {}

private:
    // options
    std::vector<std::size_t> capacities_;

    // state
    std::vector<SampleHistory> histories_;
    std::vector<std::vector<double>> replayed_;
    std::vector<bool> isMagPhase_;
    bool showsReplay_ = false;
};

}  // namespace wavedeck::driver

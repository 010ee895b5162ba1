#pragma once

namespace wavedeck {

/// The host's display object of a client, as far as stages look at it.
class WaveDeck {
public:
    double getSimStartTime() const { return simStartTime_; }
    void setSimStartTime(double seconds) { simStartTime_ = seconds; }

private:
    double simStartTime_ = 0.0;
};

}  // namespace wavedeck

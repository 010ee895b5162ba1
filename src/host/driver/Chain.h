#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ChainKind.h"
#include "SignalFrame.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace wavedeck::driver {

/// A stage in its chain.
struct Stage {
    std::string name;
    std::shared_ptr<WaveDeckTransformImpl> object;
    PropertyList options;  ///< sent at each setup of the chain
    StageView view = StageView::Current;
    bool dataSignalsOnly = false;  ///< not set up with, nor called for, the input ports
    bool isSetUp = false;

    std::vector<std::vector<double>> outputs;  ///< of each signal: what it put out, if it replaces data
};

/// The stages of a client in order, and the road of a frame through them.
class Chain {
public:
    /// lineLength tells the length of a spectrogram's lines, 0 while there is no spectrogram.
    Chain(std::size_t numSignals, std::size_t numDataSignals, std::function<std::size_t()> lineLength);

    void add(const std::string& name, std::shared_ptr<WaveDeckTransformImpl> object, PropertyList options);
    std::vector<Stage>& stages() { return stages_; }
    const std::vector<Stage>& stages() const { return stages_; }
    /// Throws DriverError for a name that is not in the chain.
    Stage& find(const std::string& name);
    const Stage& find(const std::string& name) const;

    /// Hands a frame to all active stages, stage by stage, and within a stage from signal 0 to the last.
    /// channels: of each signal, as it is behind the stages that change the count
    void run(std::vector<SignalFrame>& signals, const std::vector<int>& channels);

private:
    void runStage(Stage& stage, std::vector<SignalFrame>& signals, const std::vector<int>& channels);
    void makeNewestLine(SignalFrame& signal, std::size_t channels);

    // options
    std::size_t numSignals_;
    std::size_t numDataSignals_;
    std::function<std::size_t()> lineLength_;

    // state
    std::vector<Stage> stages_;
};

}  // namespace wavedeck::driver

#include "BlockflowSimulation.h"

#include <algorithm>
#include <utility>

#include "DriverError.h"

namespace wavedeck::driver {

SimulationInput::~SimulationInput() = default;

BlockflowSimulation::BlockflowSimulation(DeckClient& client, SimulationInput& input, std::size_t keptSteps)
    : client_(client), input_(input), keptSteps_(keptSteps) {
    const ClientFacts facts = client.facts();
    if (!isBlockflow(facts.kind)) {
        throw DriverError("client \"" + facts.name + "\" takes no frames of a simulation");
    }
    samplesPerStep_ = facts.signals.front().frameSize;
    sampleTime_ = facts.signals.front().sampleTime;
    startTime_ = facts.startTime;
    stopTime_ = facts.stopTime;
    for (const SignalFacts& signal : facts.signals) {
        frameSizes_.push_back(signal.frameSize);
    }
    clientSizes_ = frameSizes_;
    heads_.resize(frameSizes_.size());
}

double BlockflowSimulation::timeOf(std::uint64_t step) const {
    return startTime_ + static_cast<double>(step * static_cast<std::uint64_t>(samplesPerStep_)) * sampleTime_;
}

double BlockflowSimulation::lastSampleTime(std::uint64_t step) const {
    const int size = stepAt(step).frameSizes.front();
    if (size <= 1) {
        return timeOf(step);
    }
    const auto samples = static_cast<double>((step + 1) * static_cast<std::uint64_t>(size));
    return startTime_ + (samples - 1.0) * (sampleTime_ * (static_cast<double>(samplesPerStep_) / size));
}

double BlockflowSimulation::time() const {
    return stepped_ == 0 ? startTime_ : timeOf(stepped_ - 1);
}

bool BlockflowSimulation::readAhead() {
    Step step{std::vector<std::vector<double>>(frameSizes_.size()), frameSizes_};
    for (std::size_t s = 0; s < frameSizes_.size(); ++s) {
        if (!input_.read(s, static_cast<std::size_t>(frameSizes_[s]), step.frames[s])) {
            return false;
        }
    }
    steps_.push_back(std::move(step));
    return true;
}

bool BlockflowSimulation::isLast(std::uint64_t step) {
    const bool isKnown = step + 1 - firstKept_ < steps_.size();
    return timeOf(step + 1) > stopTime_ || (!isKnown && !readAhead());
}

void BlockflowSimulation::publish(SimStatus status) {
    status_ = status;
    client_.withInfo([&](WaveDeckClientInfo& info) {
        info.setSimulationTime(time());
        // The client's stages flush at the end: it ends for them when they get the last step.
        info.setSimStatus(status == SimStatus::Ended && waiting() > 0 ? SimStatus::Running : status);
    });
}

StepResult BlockflowSimulation::step() {
    if (status_ == SimStatus::Ended) {
        return StepResult::Ended;
    }
    if (status_ == SimStatus::Paused) {
        return StepResult::Paused;
    }
    bool proceed = true;
    client_.withInfo([&](const WaveDeckClientInfo& info) { proceed = info.continueProcessing(); });
    if (!proceed && waiting() > 0) {
        return StepResult::Held;
    }
    const bool isKnown = stepped_ - firstKept_ < steps_.size();
    if (timeOf(stepped_) > stopTime_ || (!isKnown && !readAhead())) {
        publish(SimStatus::Ended);
        return StepResult::Ended;
    }
    ++stepped_;
    publish(isLast(stepped_ - 1) ? SimStatus::Ended : SimStatus::Running);
    forgetOldSteps();
    return StepResult::Stepped;
}

void BlockflowSimulation::forgetOldSteps() {
    while (delivered_ - firstKept_ > keptSteps_ && firstKept_ < delivered_) {
        steps_.pop_front();
        ++firstKept_;
    }
}

const BlockflowSimulation::Step& BlockflowSimulation::stepAt(std::uint64_t step) const {
    return steps_[static_cast<std::size_t>(step - firstKept_)];
}

bool BlockflowSimulation::haveSameSizes(const Step& one, const Step& other) {
    return one.frameSizes == other.frameSizes &&
           std::equal(one.frames.begin(), one.frames.end(), other.frames.begin(),
                      [](const auto& frame, const auto& otherFrame) { return frame.size() == otherFrame.size(); });
}

std::size_t BlockflowSimulation::deliver(std::size_t most) {
    const std::size_t count = std::min(most, waiting());
    std::size_t done = 0;
    while (done < count) {
        // One frame of the client holds steps of one size, in which the same ports deliver.
        const std::uint64_t first = delivered_;
        std::size_t run = 1;
        while (done + run < count && haveSameSizes(stepAt(first + run), stepAt(first))) {
            ++run;
        }
        delivered_ += run;
        publish(status_);
        hand(first, run);
        done += run;
    }
    return count;
}

void BlockflowSimulation::hand(std::uint64_t first, std::size_t count) {
    const std::vector<int>& sizes = stepAt(first).frameSizes;
    if (sizes != clientSizes_) {
        client_.resizeFrames(sizes);
        clientSizes_ = sizes;
    }
    for (std::size_t s = 0; s < heads_.size(); ++s) {
        fillHead(s, first, count);
    }
    client_.simulationFrame(heads_);
}

void BlockflowSimulation::fillHead(std::size_t signal, std::uint64_t first, std::size_t count) {
    std::vector<double>& head = heads_[signal];
    head.clear();
    const auto size = static_cast<std::size_t>(stepAt(first).frameSizes[signal]);
    const std::size_t perStep = stepAt(first).frames[signal].size();
    if (perStep == 0 || size == 0) {
        return;  // an input port that delivers nothing
    }
    for (std::size_t k = 0; k < count; ++k) {
        head.push_back(timeOf(first + k));
    }
    for (std::size_t channel = 0; channel < perStep / size; ++channel) {
        for (std::size_t k = 0; k < count; ++k) {
            const double* row = stepAt(first + k).frames[signal].data() + channel * size;
            head.insert(head.end(), row, row + size);
        }
    }
}

bool BlockflowSimulation::stepBack() {
    if (stepped_ < 2 || stepped_ - 2 < firstKept_) {
        return false;
    }
    --stepped_;
    const bool wasSeen = delivered_ > stepped_;
    delivered_ = std::min(delivered_, stepped_);
    publish(status_ == SimStatus::Paused ? SimStatus::Paused : SimStatus::Running);
    if (wasSeen) {
        client_.rollback(PropertyList().addDouble("rollbacktime", lastSampleTime(stepped_ - 1)));
        hand(stepped_ - 1, 1);
    }
    return true;
}

void BlockflowSimulation::pause() {
    if (status_ == SimStatus::Running) {
        publish(SimStatus::Paused);
    }
}

void BlockflowSimulation::resume() {
    if (status_ == SimStatus::Paused) {
        publish(SimStatus::Running);
    }
}

void BlockflowSimulation::restart(bool fast) {
    input_.restart();
    steps_.clear();
    firstKept_ = 0;
    stepped_ = 0;
    delivered_ = 0;
    client_.withInfo([fast](WaveDeckClientInfo& info) {
        info.setFastRestart(fast);
        info.setContinueProcessing(true);
    });
    publish(SimStatus::Running);
    client_.restart();
    client_.setup();
}

}  // namespace wavedeck::driver

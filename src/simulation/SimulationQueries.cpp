#include "SimulationQueries.h"

#include <string>

#include "Board.h"
#include "QueryStructure.h"
#include "SimulationMetaDataFilter.h"

namespace dspwavedecks {

void answerSimulationTime(nbArray** plhs, const nbArray** prhs) {
    auto& settings = findBoard(queriedClient(prhs));
    plhs[0] = nbCreateDoubleScalar(board::readShared<double>(settings, SimulationMetaDataFilter::simTime));
}

void answerSimulationMetaData(nbArray** plhs, const nbArray** prhs) {
    auto& settings = findBoard(queriedClient(prhs));
    const auto count = [&settings](const std::string& key) {
        return static_cast<double>(board::readShared<unsigned long>(settings, key));
    };
    QueryStructure structure({"SimulationTime", "SamplesProcessed", "FramesProcessed"});
    structure.setDouble("SimulationTime", board::readShared<double>(settings, SimulationMetaDataFilter::simTime));
    structure.setDouble("SamplesProcessed", count(SimulationMetaDataFilter::samplesProcessed));
    structure.setDouble("FramesProcessed", count(SimulationMetaDataFilter::framesProcessed));
    plhs[0] = structure.release();
}

}  // namespace dspwavedecks

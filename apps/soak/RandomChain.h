#pragma once

#include <string>
#include <vector>

#include "ChainKind.h"
#include "RandomNumbers.h"
#include "Stage.h"
#include "StageLibrary.h"

namespace soak {

/// A strategy in one of its kinds of chain, and the stages that may stand there.
struct ChainForm {
    std::string strategy;
    wavedeck::driver::ChainKind kind;
    std::vector<const dspwavedecks::catalogue::Stage*> stages;  ///< in an order in which they can be called
};

/// Every kind of chain that the library can fill, by the table of its stages.
std::vector<ChainForm> findChainForms(const wavedeck::driver::StageLibrary& library);

/// The stages of one client: most of them, in order.
std::vector<const dspwavedecks::catalogue::Stage*> chooseStages(const ChainForm& form, RandomNumbers& random);

}  // namespace soak

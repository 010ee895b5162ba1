#include "RandomChain.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "Catalogue.h"

namespace soak {

namespace {

namespace catalogue = dspwavedecks::catalogue;
using catalogue::Chains;
using wavedeck::driver::ChainKind;

constexpr std::array<std::pair<Chains, ChainKind>, 6> kinds{{
    {Chains::Time, ChainKind::Time},
    {Chains::Spectrum, ChainKind::Spectrum},
    {Chains::Frame, ChainKind::Frame},
    {Chains::Response, ChainKind::Response},
    {Chains::BlockflowTime, ChainKind::BlockflowTime},
    {Chains::BlockflowSpectrum, ChainKind::BlockflowSpectrum},
}};

/// Place in a chain: records and what steers a simulation first, then what replaces the data, then what keeps it.
int rankOf(std::string_view stage) {
    if (wavedeck::driver::viewOf(std::string(stage)) == wavedeck::driver::StageView::Raw) {
        return 0;
    }
    if (stage.ends_with("estimator_filter") || stage == "magnitude_phase_filter" ||
        stage == "digital_filter_frequency_response_filter") {
        return 1;
    }
    const bool replacesOrKeeps = stage.ends_with("aggregator_filter") || stage.ends_with("cache_filter") ||
                                 stage == "magnitude_phase_response_filter";
    return replacesOrKeeps ? 2 : stage.ends_with("thinner_filter") ? 4 : 3;
}

}  // namespace

std::vector<ChainForm> findChainForms(const wavedeck::driver::StageLibrary& library) {
    std::vector<ChainForm> forms;
    for (const catalogue::Stage& strategy : catalogue::stages) {
        for (const auto& [chain, kind] : kinds) {
            if (strategy.kind != catalogue::StageKind::Strategy || !intersects(strategy.chains, chain) ||
                !library.offers(std::string(strategy.name))) {
                continue;
            }
            ChainForm form{std::string(strategy.name), kind, {}};
            for (const catalogue::Stage& stage : catalogue::stages) {
                if (stage.kind == catalogue::StageKind::Filter && intersects(stage.chains, chain) &&
                    library.offers(std::string(stage.name))) {
                    form.stages.push_back(&stage);
                }
            }
            std::stable_sort(form.stages.begin(), form.stages.end(),
                             [](const auto* a, const auto* b) { return rankOf(a->name) < rankOf(b->name); });
            forms.push_back(std::move(form));
        }
    }
    return forms;
}

std::vector<const catalogue::Stage*> chooseStages(const ChainForm& form, RandomNumbers& random) {
    std::vector<const catalogue::Stage*> chosen;
    for (const catalogue::Stage* stage : form.stages) {
        // Measurements stand on what is ranked before them.
        if (!random.oneIn(rankOf(stage->name) < 3 ? 50 : 5)) {
            chosen.push_back(stage);
        }
    }
    return chosen;
}

}  // namespace soak

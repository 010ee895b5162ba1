#include "AnnotationList.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace program {
namespace {

using Json = nlohmann::ordered_json;

bool goesOn(const AnnotationList::Finding& before, const AnnotationList::Finding& now) {
    return before.label == now.label && std::abs(before.frequency - now.frequency) <= now.upper - now.lower;
}

std::uint64_t sampleStart(const Json& annotation) {
    const auto start = annotation.is_object() ? annotation.find("core:sample_start") : annotation.end();
    return start != annotation.end() && start->is_number_unsigned() ? start->get<std::uint64_t>() : 0;
}

}  // namespace

void AnnotationList::add(std::uint64_t begin, std::uint64_t end, const std::vector<Finding>& findings) {
    constexpr std::size_t mostEvents = 100000;
    stillOpen_.clear();
    for (const auto& finding : findings) {
        const auto known = std::find_if(open_.begin(), open_.end(),
                                        [&](std::size_t event) { return goesOn(events_[event].finding, finding); });
        if (known != open_.end()) {
            auto& event = events_[*known];
            event.end = end;
            event.finding.frequency = finding.frequency;
            event.finding.lower = std::min(event.finding.lower, finding.lower);
            event.finding.upper = std::max(event.finding.upper, finding.upper);
            if (finding.level > event.finding.level) {
                event.finding.level = finding.level;
                event.finding.comment = finding.comment;
            }
            stillOpen_.push_back(*known);
            open_.erase(known);
        } else if (events_.size() < mostEvents) {
            stillOpen_.push_back(events_.size());
            events_.push_back({begin, end, finding});
        } else {
            ++leftOut_;
        }
    }
    open_.swap(stillOpen_);
}

void AnnotationList::writeTo(Json& metadata, std::uint64_t firstIndex) const {
    auto& annotations = metadata["annotations"];
    std::vector<Json> all;
    if (annotations.is_array()) {
        all.assign(annotations.begin(), annotations.end());
    }
    for (const auto& event : events_) {
        all.push_back({{"core:sample_start", firstIndex + event.begin},
                       {"core:sample_count", event.end - event.begin},
                       {"core:freq_lower_edge", event.finding.lower},
                       {"core:freq_upper_edge", event.finding.upper},
                       {"core:label", event.finding.label},
                       {"core:comment", event.finding.comment},
                       {"core:generator", "wavedeck"}});
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const Json& a, const Json& b) { return sampleStart(a) < sampleStart(b); });
    annotations = std::move(all);
}

}  // namespace program

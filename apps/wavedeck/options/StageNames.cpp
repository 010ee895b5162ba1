#include "StageNames.h"

#include <algorithm>
#include <vector>

#include "TextLists.h"
#include "UsageError.h"

namespace program {
namespace {

template <typename Fits>
std::vector<std::string_view> select(std::span<const std::string_view> names, Fits fits) {
    std::vector<std::string_view> selected;
    for (const auto name : names) {
        if (fits(name) && std::find(selected.begin(), selected.end(), name) == selected.end()) {
            selected.push_back(name);
        }
    }
    return selected;
}

}  // namespace

std::string_view resolveStageName(std::string_view shortened, std::span<const std::string_view> names) {
    auto fitting = select(names, [&](std::string_view name) { return name == shortened; });
    if (fitting.empty()) {
        fitting = select(names, [&](std::string_view name) { return name.starts_with(shortened); });
    }
    if (fitting.empty()) {
        fitting = select(names, [&](std::string_view name) { return name.find(shortened) != std::string_view::npos; });
    }
    if (fitting.empty()) {
        throw UsageError("no stage `" + std::string(shortened) + "`; there are " + join(names, ", "));
    }
    if (fitting.size() > 1) {
        throw UsageError("the stage `" + std::string(shortened) + "` may be " + join(fitting, ", "));
    }
    return fitting.front();
}

}  // namespace program

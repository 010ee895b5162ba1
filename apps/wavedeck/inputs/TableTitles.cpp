#include "TableTitles.h"

#include <algorithm>

#include "TableTimes.h"

namespace program {

std::vector<std::string> tableTitles(std::vector<std::string> twoAbove, std::vector<std::string> above,
                                     std::size_t columns) {
    for (auto* cells : {&twoAbove, &above}) {
        if (cells->size() == columns + 1 && cells->back().empty()) {
            cells->pop_back();
        }
    }
    const auto isUnit = [](const std::string& cell) {
        return cell.empty() || (cell.front() == '(' && cell.back() == ')') ||
               (cell.front() == '[' && cell.back() == ']');
    };
    if (above.size() != columns) {
        const bool isTime = !above.empty() && TableTimes::findUnit(above.front());
        return isTime ? std::vector{above.front()} : std::vector<std::string>();
    }
    if (twoAbove.size() == columns && std::all_of(above.begin(), above.end(), isUnit)) {
        std::transform(twoAbove.begin(), twoAbove.end(), above.begin(), above.begin(),
                       [](const auto& name, const auto& unit) { return unit.empty() ? name : name + ' ' + unit; });
    }
    return above;
}

}  // namespace program

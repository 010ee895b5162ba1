#include <cmath>
#include <nlohmann/json.hpp>
#include <type_traits>

#include "EngineeringNumber.h"
#include "FigureDefinitions.h"
#include "Report.h"

namespace program {
namespace {

using Json = nlohmann::ordered_json;

Json number(double value) {
    return std::isfinite(value) ? Json(value) : Json(formatQuantity(value, ""));
}

Json toJson(const ReportValue& value) {
    Json json = std::visit(
        [](const auto& held) {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, double>) {
                return number(held);
            } else {
                return Json(held);
            }
        },
        value.value);
    if (!value.unit.empty()) {
        return {{"value", std::move(json)}, {"unit", value.unit}};
    }
    return json;
}

Json toJson(const ReportTable& table) {
    Json rows = Json::array();
    for (const auto& row : table.rows) {
        Json object = Json::object();
        for (std::size_t column = 0; column < table.columns.size(); ++column) {
            const auto& [key, label, unit, definition] = table.columns[column];
            object[key] = toJson(ReportValue{key, label, row[column], unit});
        }
        rows.push_back(std::move(object));
    }
    return rows;
}

/// What the figures of a section are; a column of a table is TABLE.COLUMN.
Json definitionsOf(const ReportSection& section, const std::string& key) {
    Json definitions = Json::object();
    const auto add = [&](const std::string& figure, const std::string& ofSettings = {}) {
        if (const auto text = ofSettings.empty() ? findFigureDefinition(key, figure) : ofSettings; !text.empty()) {
            definitions[figure] = text;
        }
    };
    for (const auto& value : section.values) {
        add(value.key);
    }
    for (const auto& table : section.tables) {
        for (const auto& column : table.columns) {
            add(table.key + '.' + column.key, column.definition);
        }
    }
    return definitions;
}

/// key  of the section for the definitions
Json toJson(const ReportSection& section, const std::string& key) {
    Json json = Json::object();
    for (const auto& value : section.values) {
        json[value.key] = toJson(value);
    }
    for (const auto& table : section.tables) {
        json[table.key] = toJson(table);
    }
    for (const auto& part : section.sections) {
        json[part.key] = toJson(part, part.key);
    }
    if (auto definitions = definitionsOf(section, key); !definitions.empty()) {
        json["definitions"] = std::move(definitions);
    }
    return json;
}

Json toJson(const std::vector<ReportSection>& sections, const std::string& key) {
    Json list = Json::array();
    for (const auto& section : sections) {
        list.push_back(toJson(section, key));
    }
    return list;
}

}  // namespace

std::string reportAsJson(const Report& report) {
    const Json json{{"inputs", toJson(report.inputs, "input")},
                    {"decks", toJson(report.decks, "deck")},
                    {"warnings", report.warnings},
                    {"ended", report.ended}};
    // Names of files may hold bytes that are no UTF-8.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace program

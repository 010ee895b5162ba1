#include <algorithm>
#include <cmath>

#include "EngineeringNumber.h"
#include "Report.h"

namespace program {
namespace {

/// A figure as people read it; nan, where there was nothing to measure, has no unit.
std::string shown(double value, const std::string& unit) {
    return formatQuantity(value, std::isnan(value) ? "" : unit);
}

std::string shown(const ReportValue& value) {
    std::string text;
    if (const auto* number = std::get_if<double>(&value.value)) {
        text = shown(*number, value.unit);
    } else if (const auto* count = std::get_if<std::uint64_t>(&value.value)) {
        text = std::to_string(*count);
    } else if (const auto* flag = std::get_if<bool>(&value.value)) {
        text = *flag ? "yes" : "no";
    } else {
        text = std::get<std::string>(value.value);
    }
    if (!value.note.empty()) {
        text += ' ' + value.note;
    }
    return text;
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string shown(const ReportTable& table, const std::string& indent) {
    constexpr std::size_t width = 18;
    std::string text = indent + " #  ";
    for (const auto& column : table.columns) {
        text += padded(column.label, width);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text += '\n';
    for (std::size_t row = 0; row < table.rows.size(); ++row) {
        const std::string number = std::to_string(row + 1);
        text += indent + std::string(number.size() < 2 ? 1 : 0, ' ') + number + "  ";
        for (std::size_t column = 0; column < table.columns.size(); ++column) {
            text += padded(shown(table.rows[row][column], table.columns[column].unit), width);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    }
    return text;
}

std::string shown(const ReportSection& section, std::size_t depth) {
    const std::string indent(2 * depth, ' ');
    std::size_t width = 0;
    for (const auto& value : section.values) {
        width = std::max(width, value.label.size());
    }
    std::string text = indent + section.title + '\n';
    for (const auto& value : section.values) {
        if (value.label.empty()) {
            continue;
        }
        text += indent + "  " + padded(value.label, width) + "  " + shown(value) + '\n';
    }
    for (const auto& table : section.tables) {
        text += shown(table, indent + "  ");
    }
    for (const auto& part : section.sections) {
        text += shown(part, depth + 1);
    }
    return text;
}

}  // namespace

std::string reportAsText(const Report& report) {
    std::string text;
    for (const auto* sections : {&report.inputs, &report.decks}) {
        for (const auto& section : *sections) {
            text += shown(section, 0);
        }
    }
    if (report.ended != "end of input") {
        text += "ended early: " + report.ended + '\n';
    }
    return text;
}

}  // namespace program

#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace program {

/// One figure: its key for machines, its label and unit for people.
struct ReportValue {
    std::string key;
    std::string label;  ///< empty: not shown to people, who have it in a title
    std::variant<double, std::uint64_t, bool, std::string> value;
    std::string unit = {};  ///< of a double; empty: a pure number
    std::string note = {};  ///< for people, behind the value
};

/// Rows of figures that have their keys, labels and units in common, such as peaks.
struct ReportTable {
    struct Column {
        std::string key;
        std::string label;
        std::string unit = {};
        std::string definition = {};  ///< where it depends on settings; empty: the usual one
    };
    std::string key;
    std::vector<Column> columns;
    std::vector<std::vector<double>> rows;
};

/// A part of the report: figures, then tables, then parts below it.
struct ReportSection {
    std::string key;    ///< empty: the part is an element of a list of its parent
    std::string title;  ///< for people
    std::vector<ReportValue> values = {};
    std::vector<ReportTable> tables = {};
    std::vector<ReportSection> sections = {};

    ReportSection& add(ReportValue value) {
        values.push_back(std::move(value));
        return *this;
    }
};

/// The whole report.
struct Report {
    std::vector<ReportSection> inputs;
    std::vector<ReportSection> decks;
    std::vector<std::string> warnings;
    std::string ended;  ///< why it ended
};

/// For people: figures with engineering prefixes, aligned.
std::string reportAsText(const Report& report);

/// For programs: one JSON object. A figure with a unit is {"value": ..., "unit": ...}; numbers that are not finite are
/// the texts "nan", "inf" and "-inf". "definitions" beside figures tells how they are defined.
std::string reportAsJson(const Report& report);

}  // namespace program

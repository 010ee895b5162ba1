#pragma once

#include <string>
#include <vector>

namespace program {

/// Traces side by side, as a table that spreadsheets and numeric tools read.
struct TraceTable {
    struct Column {
        std::string title;  ///< with the unit in parentheses
        std::vector<double> values;
    };
    std::vector<std::string> remarks;  ///< a line each, above the titles
    std::vector<Column> columns;       ///< the axis of a trace stands in front of it

    /// Adds the axis of the next traces, unless it is that of the traces before.
    void addAxis(const std::string& title, std::vector<double> values);

    /// Remarks behind `#`, titles, then a row a point: numbers with as many digits as they have, nan, inf; columns that
    /// are shorter than others have empty cells at their end.
    std::string csv() const;

private:
    std::size_t axis_ = 0;  ///< column of the last axis
};

}  // namespace program

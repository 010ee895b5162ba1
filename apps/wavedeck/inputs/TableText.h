#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ByteSource.h"

namespace program {

/// The lines of a text table, without those that are blank or begin with `#`.
class TableLines {
public:
    explicit TableLines(const std::string& path) : source_(path) {}

    const std::string& name() const { return source_.name(); }
    bool isFile() const { return source_.size().has_value(); }

    /// The next line; nothing at the end. Throws UsageError for a line that no table has.
    std::optional<std::string_view> next();

    /// Number of the line that next() gave last, from 1.
    std::uint64_t number() const { return number_; }
    /// Whether that line was ended by a line break.
    bool isWhole() const { return isWhole_; }

    /// Begins anew; false for a pipe.
    bool rewind();

    /// Throws UsageError that names the table and the line that next() gave last.
    [[noreturn]] void fail(const std::string& what) const;

private:
    bool fill();
    /// Lines end with LF, be there CR before it or not; with CR alone where the first piece of text has no LF.
    void findLineBreak();

    ByteSource source_;
    std::string held_;
    std::size_t begin_ = 0;  ///< of what is left in held_
    std::uint64_t number_ = 0;
    bool isWhole_ = false;
    char lineBreak_ = '\0';  ///< '\0': not known yet
};

/// How the cells of a table are told apart.
enum class TableSeparator : char { Comma = ',', Semicolon = ';', Tab = '\t', Blanks = ' ' };

/// The separator that a line shows: a tab, a semicolon or a comma, the first of them that it holds; else blanks.
TableSeparator findSeparator(std::string_view line);

/// The cells of a line without blanks and quotation marks around them; a separator within quotation marks is part of
/// its cell.
void splitCells(std::string_view line, TableSeparator separator, std::vector<std::string_view>& cells);

/// Whether a cell that begins with a quotation mark goes on behind the end of the line.
bool endsInQuotes(std::string_view line);

/// The number in a cell: NaN for an empty one, nothing for a text. Where no comma separates the cells it may stand for
/// the decimal point.
std::optional<double> readCell(std::string_view cell, TableSeparator separator);

}  // namespace program

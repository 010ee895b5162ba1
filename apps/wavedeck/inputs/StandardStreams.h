#pragma once

#include <string>
#include <string_view>

namespace program {

/// Standard input, output and error, as far as they need care.
class StandardStreams {
public:
    /// Puts something that can be neither read nor written where one of them is closed: the next file that is opened
    /// would take its place, and a report would go into it. Call before anything is opened.
    static void claim();

    /// Writes a text to standard output at once. Returns false when nobody reads there any more; throws
    /// std::runtime_error when it cannot be written.
    static bool write(std::string_view text);

    /// Writes `wavedeck: TEXT` to standard error, as one line whatever a name or a file has brought into the text.
    static void complain(std::string text);
};

}  // namespace program

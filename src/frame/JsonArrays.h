#pragma once

#include <Poco/JSON/Array.h>

#include <cstddef>
#include <string>
#include <vector>

/// Arrays of numbers for the client message, built fast. Poco keeps every number of an array in a cell of its own on
/// the heap: writing inside the cells of an array that was sent before takes a twentieth of the time of a new one.
namespace dspwavedecks {

/// Writes numbers one behind the other over whatever an array holds; what is left of the old ones goes at the end.
class JsonArrayWriter {
public:
    explicit JsonArrayWriter(Poco::JSON::Array& array) : array(array) {}

    /// Appends doubles as they are.
    void append(const double* values, std::size_t count);

    /// Appends doubles, with `shift` added to each.
    void appendShifted(const double* values, std::size_t count, double shift);

    /// Appends doubles for the client, which gets no NaN and no infinity: these are replaced, and the places of the
    /// replacements, counted from the beginning of the array, are appended to nanPlaces.
    template <class Replacement>
    void appendFinite(const double* values, std::size_t count, Replacement replacement, std::vector<int>& nanPlaces);

    /// Appends integers as they are.
    void append(const std::vector<int>& values);

    /// Cuts the array to what was written.
    void finish();

private:
    template <class NumberAt>
    void write(std::size_t count, NumberAt numberAt);
    Poco::Dynamic::Var& slot(std::size_t index);
    void grow(std::size_t count);

    Poco::JSON::Array& array;
    std::size_t written = 0;
};

extern template void JsonArrayWriter::appendFinite(const double*, std::size_t, int, std::vector<int>&);
extern template void JsonArrayWriter::appendFinite(const double*, std::size_t, double, std::vector<int>&);

/// The numbers as the compact text of an array, for members of a message that carry arrays inside a string; NaN and
/// infinities as "nan" and "inf".
std::string arrayText(const double* values, std::size_t count);

/// Arrays that are handed out again once the messages that held them are gone.
class JsonArrayPool {
public:
    /// An array that nobody else holds, with whatever it held before: write it with a JsonArrayWriter.
    /// length  numbers that are going to be written; an array of about that length is preferred
    Poco::JSON::Array::Ptr take(std::size_t length);

private:
    std::vector<Poco::JSON::Array::Ptr> arrays;
};

}  // namespace dspwavedecks

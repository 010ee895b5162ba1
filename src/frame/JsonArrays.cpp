#include "JsonArrays.h"

#include <Poco/Dynamic/Var.h>

#include <cmath>
#include <iterator>
#include <sstream>
#include <typeinfo>

namespace dspwavedecks {

namespace {

using Poco::Dynamic::Var;

/// Writes inside the cell when it holds a number of the same type, else makes a new one.
template <class Number>
void assign(Var& cell, Number value) {
    if (!cell.isEmpty() && cell.type() == typeid(Number)) {
        const_cast<Number&>(cell.extract<Number>()) = value;  // the cell itself is not constant
    } else {
        Var(value).swap(cell);
    }
}

}  // namespace

Var& JsonArrayWriter::slot(std::size_t index) {
    // The array offers constant iterators only; its cells are not constant.
    return const_cast<Var&>(*std::next(array.begin(), static_cast<std::ptrdiff_t>(index)));
}

void JsonArrayWriter::grow(std::size_t count) {
    if (count == 0) {
        return;
    }
    const auto last = static_cast<unsigned int>(written + count - 1);
    // Setting through the array makes the room in one step, and tells the array that its contents have changed.
    array.set(last, last < array.size() ? array.get(last) : Var());
}

template <class NumberAt>
void JsonArrayWriter::write(std::size_t count, NumberAt numberAt) {
    grow(count);
    for (std::size_t i = 0; i < count; ++i) {
        assign(slot(written + i), numberAt(i));
    }
    written += count;
}

void JsonArrayWriter::append(const double* values, std::size_t count) {
    write(count, [values](std::size_t i) { return values[i]; });
}

void JsonArrayWriter::appendShifted(const double* values, std::size_t count, double shift) {
    write(count, [values, shift](std::size_t i) { return shift + values[i]; });
}

void JsonArrayWriter::append(const std::vector<int>& values) {
    write(values.size(), [&values](std::size_t i) { return values[i]; });
}

template <class Replacement>
void JsonArrayWriter::appendFinite(const double* values, std::size_t count, Replacement replacement,
                                   std::vector<int>& nanPlaces) {
    grow(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (std::isfinite(values[i])) {
            assign(slot(written + i), values[i]);
        } else {
            assign(slot(written + i), replacement);
            nanPlaces.push_back(static_cast<int>(written + i));
        }
    }
    written += count;
}

template void JsonArrayWriter::appendFinite(const double*, std::size_t, int, std::vector<int>&);
template void JsonArrayWriter::appendFinite(const double*, std::size_t, double, std::vector<int>&);

void JsonArrayWriter::finish() {
    while (array.size() > written) {
        array.remove(static_cast<unsigned int>(array.size() - 1));
    }
}

std::string arrayText(const double* values, std::size_t count) {
    Poco::JSON::Array array;
    JsonArrayWriter(array).append(values, count);
    std::ostringstream text;
    array.stringify(text, 0, -1);
    return text.str();
}

Poco::JSON::Array::Ptr JsonArrayPool::take(std::size_t length) {
    Poco::JSON::Array::Ptr* best = nullptr;
    const auto distance = [length](const Poco::JSON::Array::Ptr& array) {
        return array->size() > length ? array->size() - length : length - array->size();
    };
    for (auto& array : arrays) {
        if (array.referenceCount() == 1 && (best == nullptr || distance(array) < distance(*best))) {
            best = &array;
        }
    }
    if (best != nullptr) {
        return *best;
    }
    arrays.push_back(new Poco::JSON::Array);
    return arrays.back();
}

}  // namespace dspwavedecks

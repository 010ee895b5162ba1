#include "QueryText.h"

#include <utility>

#include "JsonText.h"

namespace program {
namespace {

std::string toJson(const nbArray* value);

std::string numbersAsJson(const nbArray* value) {
    const std::size_t rows = nbGetRows(value);
    const std::size_t columns = nbGetColumns(value);
    const double* numbers = nbGetDoubles(value);
    if (rows == 1 && columns == 1) {
        return jsonNumber(*numbers);
    }
    if (rows <= 1 || columns <= 1) {
        return program::toJson(std::vector<double>(numbers, numbers + rows * columns));
    }
    std::vector<std::string> lines;
    for (std::size_t row = 0; row < rows; ++row) {
        std::vector<double> line;
        for (std::size_t column = 0; column < columns; ++column) {
            line.push_back(numbers[column * rows + row]);
        }
        lines.push_back(program::toJson(line));
    }
    return jsonList(lines);
}

std::string structureAsJson(const nbArray* value) {
    std::vector<std::string> elements;
    for (std::size_t index = 0; index < nbGetNumberOfElements(value); ++index) {
        std::vector<std::pair<std::string, std::string>> members;
        for (int field = 0; field < nbGetNumberOfFields(value); ++field) {
            const char* name = nbGetFieldNameByNumber(value, field);
            members.emplace_back(name, toJson(nbGetField(value, index, name)));
        }
        elements.push_back(jsonObject(members));
    }
    return elements.size() == 1 ? elements.front() : jsonList(elements);
}

std::string toJson(const nbArray* value) {
    if (value == nullptr) {
        return "null";
    }
    if (nbIsString(value)) {
        return jsonText(nbArrayToStdString(value));
    }
    if (nbIsLogical(value)) {
        return program::toJson(nbGetScalar(value) != 0.0);
    }
    return nbIsStruct(value) ? structureAsJson(value) : numbersAsJson(value);
}

}  // namespace

std::string queryAsJson(const std::vector<wavedeck::driver::QueryValue>& results) {
    std::vector<std::string> values;
    for (const auto& result : results) {
        values.push_back(toJson(result.get()));
    }
    if (values.empty()) {
        return "null";
    }
    return values.size() == 1 ? values.front() : jsonList(values);
}

}  // namespace program

#include "numbench/nbArray.h"

#include <limits>
#include <memory>
#include <variant>
#include <vector>

#include "numbench/Exception.h"

namespace {

struct Structure {
    std::vector<std::string> fieldNames;
    std::vector<std::unique_ptr<nbArray>> values;  ///< element after element, each with all its fields
};

}  // namespace

struct nbArray {
    std::variant<std::vector<double>, bool, std::string, Structure> value;
    std::size_t rows = 1;
    std::size_t columns = 1;
};

namespace {

template <typename Kind, typename ArrayPointer>
auto& read(ArrayPointer array, const char* expected) {
    auto* value = array ? std::get_if<Kind>(&array->value) : nullptr;
    if (!value) {
        throw numbench::Exception(std::string("nbArray: not ") + expected);
    }
    return *value;
}

std::size_t fieldPosition(const nbArray* array, std::size_t index, const char* fieldName) {
    const auto& structure = read<Structure>(array, "a structure");
    for (std::size_t field = 0; field < structure.fieldNames.size(); ++field) {
        if (structure.fieldNames[field] == fieldName && index < array->rows * array->columns) {
            return index * structure.fieldNames.size() + field;
        }
    }
    throw numbench::Exception(std::string("nbArray: no element with a field ") + fieldName);
}

}  // namespace

nbArray* nbCreateDoubleScalar(double value) {
    return new nbArray{std::vector<double>{value}, 1, 1};
}

nbArray* nbCreateDoubleMatrix(std::size_t rows, std::size_t columns) {
    return new nbArray{std::vector<double>(rows * columns, 0.0), rows, columns};
}

nbArray* nbCreateLogicalScalar(bool value) {
    return new nbArray{value, 1, 1};
}

nbArray* nbCreateString(const char* text) {
    std::string value(text);
    const std::size_t length = value.size();
    return new nbArray{std::move(value), 1, length};
}

nbArray* nbCreateStructArray(std::size_t numDims, const std::size_t* dims, int numFields, const char** fieldNames) {
    auto array = std::make_unique<nbArray>();
    array->rows = numDims > 0 ? dims[0] : 1;
    array->columns = 1;
    for (std::size_t i = 1; i < numDims; ++i) {
        array->columns *= dims[i];
    }
    Structure structure;
    structure.fieldNames.assign(fieldNames, fieldNames + numFields);
    structure.values.resize(array->rows * array->columns * structure.fieldNames.size());
    array->value = std::move(structure);
    return array.release();
}

void nbSetField(nbArray* structure, std::size_t index, const char* fieldName, nbArray* value) {
    std::unique_ptr<nbArray> owned(value);
    const std::size_t position = fieldPosition(structure, index, fieldName);
    read<Structure>(structure, "a structure").values[position] = std::move(owned);
}

void nbDestroyArray(nbArray* array) {
    delete array;
}

double nbGetNaN() {
    return std::numeric_limits<double>::quiet_NaN();
}

std::string nbArrayToStdString(const nbArray* array) {
    return read<std::string>(array, "a string");
}

const char* nbGetText(const nbArray* array) {
    return read<std::string>(array, "a string").c_str();
}

bool nbIsDouble(const nbArray* array) {
    return array && std::holds_alternative<std::vector<double>>(array->value);
}
bool nbIsLogical(const nbArray* array) {
    return array && std::holds_alternative<bool>(array->value);
}
bool nbIsString(const nbArray* array) {
    return array && std::holds_alternative<std::string>(array->value);
}
bool nbIsStruct(const nbArray* array) {
    return array && std::holds_alternative<Structure>(array->value);
}

double* nbGetDoubles(nbArray* array) {
    return read<std::vector<double>>(array, "a double array").data();
}
const double* nbGetDoubles(const nbArray* array) {
    return read<std::vector<double>>(array, "a double array").data();
}

double nbGetScalar(const nbArray* array) {
    if (nbIsLogical(array)) {
        return std::get<bool>(array->value) ? 1.0 : 0.0;
    }
    const auto& values = read<std::vector<double>>(array, "a number");
    if (values.empty()) {
        throw numbench::Exception("nbArray: empty");
    }
    return values.front();
}

std::size_t nbGetRows(const nbArray* array) {
    return array ? array->rows : 0;
}
std::size_t nbGetColumns(const nbArray* array) {
    return array ? array->columns : 0;
}
std::size_t nbGetNumberOfElements(const nbArray* array) {
    return nbGetRows(array) * nbGetColumns(array);
}

int nbGetNumberOfFields(const nbArray* structure) {
    return static_cast<int>(read<Structure>(structure, "a structure").fieldNames.size());
}

const char* nbGetFieldNameByNumber(const nbArray* structure, int field) {
    const auto& names = read<Structure>(structure, "a structure").fieldNames;
    const auto index = static_cast<std::size_t>(field);
    if (field < 0 || index >= names.size()) {
        throw numbench::Exception("nbArray: no such field");
    }
    return names[index].c_str();
}

const nbArray* nbGetField(const nbArray* structure, std::size_t index, const char* fieldName) {
    const std::size_t position = fieldPosition(structure, index, fieldName);
    return read<Structure>(structure, "a structure").values[position].get();
}

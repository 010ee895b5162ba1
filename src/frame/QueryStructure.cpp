#include "QueryStructure.h"

#include <algorithm>

namespace dspwavedecks {

NbArrayPointer createColumn(const double* values, std::size_t count) {
    NbArrayPointer column(nbCreateDoubleMatrix(count, 1));
    std::copy_n(values, count, nbGetDoubles(column.get()));
    return column;
}

QueryStructure::QueryStructure(std::initializer_list<const char*> fieldNames) {
    const std::size_t dimensions[] = {1, 1};
    std::vector<const char*> names(fieldNames);
    structure.reset(nbCreateStructArray(2, dimensions, static_cast<int>(names.size()), names.data()));
}

void QueryStructure::setArray(const char* fieldName, NbArrayPointer value) {
    nbSetField(structure.get(), 0, fieldName, value.release());  // takes it over, also when it throws
}

void QueryStructure::setDouble(const char* fieldName, double value) {
    setArray(fieldName, NbArrayPointer(nbCreateDoubleScalar(value)));
}

void QueryStructure::setLogical(const char* fieldName, bool value) {
    setArray(fieldName, NbArrayPointer(nbCreateLogicalScalar(value)));
}

void QueryStructure::setText(const char* fieldName, const std::string& value) {
    setArray(fieldName, NbArrayPointer(nbCreateString(value.c_str())));
}

void QueryStructure::setColumn(const char* fieldName, const std::vector<double>& values) {
    setArray(fieldName, createColumn(values.data(), values.size()));
}

}  // namespace dspwavedecks

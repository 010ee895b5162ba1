#include <cstring>
#include <limits>

#include "numbench/nbArray.h"
#include "wavedeck.h"

wavedeck_kind wavedeck_kind_of(const nbArray* array) {
    return nbIsDouble(array)    ? WAVEDECK_DOUBLES
           : nbIsLogical(array) ? WAVEDECK_LOGICAL
           : nbIsString(array)  ? WAVEDECK_TEXT
           : nbIsStruct(array)  ? WAVEDECK_STRUCTURE
                                : WAVEDECK_NOTHING;
}

size_t wavedeck_rows(const nbArray* array) {
    return nbGetRows(array);
}

size_t wavedeck_columns(const nbArray* array) {
    return nbGetColumns(array);
}

const double* wavedeck_doubles(const nbArray* array) {
    return nbIsDouble(array) ? nbGetDoubles(array) : nullptr;
}

double wavedeck_scalar(const nbArray* array) {
    const bool isNumber = nbIsLogical(array) || (nbIsDouble(array) && nbGetNumberOfElements(array) > 0);
    return isNumber ? nbGetScalar(array) : std::numeric_limits<double>::quiet_NaN();
}

const char* wavedeck_text(const nbArray* array) {
    return nbIsString(array) ? nbGetText(array) : nullptr;
}

int wavedeck_num_fields(const nbArray* structure) {
    return nbIsStruct(structure) ? nbGetNumberOfFields(structure) : 0;
}

const char* wavedeck_field_name(const nbArray* structure, int field) {
    return field >= 0 && field < wavedeck_num_fields(structure) ? nbGetFieldNameByNumber(structure, field) : nullptr;
}

const nbArray* wavedeck_field(const nbArray* structure, size_t index, const char* name) {
    for (int field = 0; name != nullptr && field < wavedeck_num_fields(structure); ++field) {
        if (std::strcmp(nbGetFieldNameByNumber(structure, field), name) == 0) {
            return index < nbGetNumberOfElements(structure) ? nbGetField(structure, index, name) : nullptr;
        }
    }
    return nullptr;
}

void wavedeck_free_array(nbArray* array) {
    nbDestroyArray(array);
}

#pragma once

#include <cstddef>
#include <string>

#include "wavedeck/Visibility.h"

/// The numeric host's array functions: what query functions build their results with, and what a caller reads them
/// with. Whoever gets a result in plhs[0] owns it and frees it with nbDestroyArray.

/// Opaque array: doubles, one logical, a text, or a structure array.
struct nbArray;

/// Form of every query function: results in plhs, arguments in prhs.
using NbFunction = void (*)(int nlhs, nbArray** plhs, int nrhs, const nbArray** prhs);

// Making arrays.

WAVEDECK_API nbArray* nbCreateDoubleScalar(double value);
/// Rows by columns, column after column, all zero.
WAVEDECK_API nbArray* nbCreateDoubleMatrix(std::size_t rows, std::size_t columns);
WAVEDECK_API nbArray* nbCreateLogicalScalar(bool value);
WAVEDECK_API nbArray* nbCreateString(const char* text);
/// A structure array of the given dimensions (product of dims), with empty fields.
WAVEDECK_API nbArray* nbCreateStructArray(std::size_t numDims, const std::size_t* dims, int numFields,
                                          const char** fieldNames);
/// Puts a value in a field of element `index`; the structure takes ownership. Throws numbench::Exception if there is
/// no such element or field.
WAVEDECK_API void nbSetField(nbArray* structure, std::size_t index, const char* fieldName, nbArray* value);
WAVEDECK_API void nbDestroyArray(nbArray* array);
WAVEDECK_API double nbGetNaN();

// Reading arrays. Each throws numbench::Exception where the array is of another kind.

WAVEDECK_API std::string nbArrayToStdString(const nbArray* array);
/// The text of a string, valid as long as the array.
WAVEDECK_API const char* nbGetText(const nbArray* array);
WAVEDECK_API bool nbIsDouble(const nbArray* array);
WAVEDECK_API bool nbIsLogical(const nbArray* array);
WAVEDECK_API bool nbIsString(const nbArray* array);
WAVEDECK_API bool nbIsStruct(const nbArray* array);
/// First element of a double array; writable, for filling what nbCreateDoubleMatrix made.
WAVEDECK_API double* nbGetDoubles(nbArray* array);
WAVEDECK_API const double* nbGetDoubles(const nbArray* array);
/// First element of a double array, or a logical as 0 or 1.
WAVEDECK_API double nbGetScalar(const nbArray* array);
WAVEDECK_API std::size_t nbGetRows(const nbArray* array);
WAVEDECK_API std::size_t nbGetColumns(const nbArray* array);
WAVEDECK_API std::size_t nbGetNumberOfElements(const nbArray* array);
WAVEDECK_API int nbGetNumberOfFields(const nbArray* structure);
WAVEDECK_API const char* nbGetFieldNameByNumber(const nbArray* structure, int field);
/// The value of a field, owned by the structure; null if it was never set.
WAVEDECK_API const nbArray* nbGetField(const nbArray* structure, std::size_t index, const char* fieldName);

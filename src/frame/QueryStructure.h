#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "Board.h"
#include "numbench/nbArray.h"

/// What the query functions share. Each has the numeric host's form, void name(int nlhs, nbArray** plhs, int nrhs,
/// const nbArray** prhs), is told the client by name as its first argument, and does not look at the counts: its
/// caller is a fixed piece of the host that always passes what is needed.
namespace dspwavedecks {

struct NbArrayDeleter {
    void operator()(nbArray* array) const { nbDestroyArray(array); }
};
using NbArrayPointer = std::unique_ptr<nbArray, NbArrayDeleter>;

/// The values as an n by 1 matrix.
NbArrayPointer createColumn(const double* values, std::size_t count);

/// A structure array of one element, filled field by field.
class QueryStructure {
public:
    explicit QueryStructure(std::initializer_list<const char*> fieldNames);

    void setDouble(const char* fieldName, double value);
    void setLogical(const char* fieldName, bool value);
    void setText(const char* fieldName, const std::string& value);
    /// An n by 1 matrix.
    void setColumn(const char* fieldName, const std::vector<double>& values);
    void setArray(const char* fieldName, NbArrayPointer value);

    /// Gives the structure to the caller of the query.
    nbArray* release() { return structure.release(); }

private:
    NbArrayPointer structure;
};

/// The client that a query names.
inline std::string queriedClient(const nbArray** prhs) {
    return nbArrayToStdString(prhs[0]);
}

/// The record under a key of the queried client's board; null if there is none of this type.
template <class Record>
Record* queriedRecord(const nbArray** prhs, const std::string& key) {
    return board::find<Record>(findBoard(queriedClient(prhs)), key);
}

/// The answer of the queries that ask for new data: the record's flag, which is left as it is.
template <class Record>
void answerIsNewDataReady(nbArray** plhs, const nbArray** prhs, const std::string& key) {
    const Record* const record = queriedRecord<Record>(prhs, key);
    plhs[0] = nbCreateLogicalScalar(record != nullptr && record->isNewDataReady);
}

}  // namespace dspwavedecks

#pragma once

#include <memory>

#include "numbench/nbArray.h"

namespace wavedeck::driver {

/// Frees an array of the numeric host.
struct DestroyArray {
    void operator()(nbArray* array) const { nbDestroyArray(array); }
};

/// One result of a query function, read with the nb functions.
using QueryValue = std::unique_ptr<nbArray, DestroyArray>;

}  // namespace wavedeck::driver

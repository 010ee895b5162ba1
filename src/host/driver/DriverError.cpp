#include "DriverError.h"

namespace wavedeck::driver {

DriverError::~DriverError() = default;

}  // namespace wavedeck::driver

#include "Display.h"

namespace wavedeck::driver {

Display::Display(std::size_t numSignals) : data_(numSignals), numChannels_(numSignals, 0), numPoints_(numSignals, 0) {}

Display::~Display() = default;

void Display::reserve(std::size_t, std::size_t) {}

}  // namespace wavedeck::driver

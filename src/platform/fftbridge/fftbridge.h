#pragma once

// All that libfftbridge.so offers.
#include "FftPlanCache.h"
#include "fftwApi.h"
#include "interleavedFFT1D.h"
